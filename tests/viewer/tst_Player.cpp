#include <QSignalSpy>
#include <QTest>

#include "Player.h"
#include "support/ViewerFixture.h"

class tst_Player : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void numberIsThatOfThePicture();
    void playsEveryPictureOnce();
    void playsEveryPictureBackwardsDecodingItOnce();
    void turnsRoundWhilePlaying();
    void fastestPassesPicturesOverButNotTheLast();
    void playsFromTheEndAgain();
    void pauseStaysAtPictureShown();
    void seekWhilePlayingGoesOn();
    void loopStartsOver();
    void stepsFromKeyFrameToKeyFrame();
    void losesNoStep();
    void seeksAreBroughtInside();
    void steppingBackDecodesGroupOnce();
    void closeForgetsPictures();
    void saysWhyItDidNotOpen();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_Player::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 24);
    QVERIFY(!m_recording.isEmpty());
}

void tst_Player::numberIsThatOfThePicture()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    QCOMPARE(player.shownNumber(), 0);
    for (int const number : {0, 23, 11, 12, 10, 3, 22}) {
        player.seek(number);
        QTRY_COMPARE(player.shownNumber(), number);
    }
    for (auto const& arguments : shown) {
        auto const picture = arguments.first().value<SxShownPicture>();
        QCOMPARE(picture.image, CxViewerFixture::decoded(m_recording, picture.number));
    }
}

void tst_Player::playsEveryPictureOnce()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown), playing(&player, &CxPlayer::playingChanged),
        rate(&player, &CxPlayer::rateMeasured);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setSpeed(4.0);
    player.setPlaying(true);
    QVERIFY(player.isPlaying());
    QTRY_VERIFY(!player.isPlaying());
    QCOMPARE(shown.size(), 24);
    for (int i = 0; i < 24; ++i)
        QCOMPARE(shown[i].first().value<SxShownPicture>().number, i);
    QCOMPARE(playing.size(), 2);
    QVERIFY(rate.size() > 20);
    QVERIFY(rate.first().first().toDouble() > 0.0);
    QCOMPARE(rate.last().first().toDouble(), 0.0);
}

void tst_Player::playsEveryPictureBackwardsDecodingItOnce()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    shown.clear();
    int const decodedBefore = player.picturesDecoded();
    player.setSpeed(4.0);
    player.setBackwards(true);
    player.setPlaying(true); // from the beginning, that is from the end
    QTRY_VERIFY(!player.isPlaying());
    QCOMPARE(shown.size(), 24);
    for (int i = 0; i < 24; ++i) {
        auto const picture = shown[i].first().value<SxShownPicture>();
        QCOMPARE(picture.number, 23 - i);
        QCOMPARE(picture.image, CxViewerFixture::decoded(m_recording, 23 - i));
    }
    QVERIFY(player.picturesDecoded() - decodedBefore <= 24);
}

void tst_Player::turnsRoundWhilePlaying()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setPlaying(true);
    QTRY_VERIFY(player.shownNumber() >= 3);
    int const turned = player.shownNumber();
    shown.clear();
    player.setBackwards(true);
    QVERIFY(player.isPlaying());
    QTRY_VERIFY(shown.size() >= 2);
    QCOMPARE(shown[0].first().value<SxShownPicture>().number, turned - 1);
    QCOMPARE(shown[1].first().value<SxShownPicture>().number, turned - 2);
}

void tst_Player::fastestPassesPicturesOverButNotTheLast()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setSpeed(16.0);
    player.setPlaying(true);
    QTRY_VERIFY(!player.isPlaying());
    QVector<int> numbers;
    for (auto const& arguments : shown)
        numbers.append(arguments.first().value<SxShownPicture>().number);
    QCOMPARE(numbers, (QVector<int>{0, 4, 8, 12, 16, 20, 23}));
}

void tst_Player::playsFromTheEndAgain()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(23);
    QTRY_COMPARE(player.shownNumber(), 23);
    shown.clear();
    player.setPlaying(true);
    QTRY_VERIFY(shown.size() > 1);
    QCOMPARE(shown[0].first().value<SxShownPicture>().number, 0);
    QCOMPARE(shown[1].first().value<SxShownPicture>().number, 1);
}

void tst_Player::pauseStaysAtPictureShown()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setPlaying(true);
    QTRY_VERIFY(player.shownNumber() >= 2);
    player.setPlaying(false);
    int const paused = player.shownNumber();
    player.step(1); // from the one shown, whatever had been read ahead
    QTRY_COMPARE(player.shownNumber(), paused + 1);
    QCOMPARE(shown.last().first().value<SxShownPicture>().number, paused + 1);
    QCOMPARE(shown.size(), paused + 2);
}

void tst_Player::seekWhilePlayingGoesOn()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setPlaying(true);
    player.seek(15);
    QTRY_VERIFY(player.shownNumber() >= 17);
    QVERIFY(player.isPlaying());
    QVector<int> numbers;
    for (auto const& arguments : shown)
        numbers.append(arguments.first().value<SxShownPicture>().number);
    QCOMPARE(numbers.mid(0, 4), (QVector<int>{0, 15, 16, 17}));
}

void tst_Player::loopStartsOver()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setLooping(true);
    player.setSpeed(4.0);
    player.seek(22);
    QTRY_COMPARE(player.shownNumber(), 22);
    shown.clear();
    player.setPlaying(true);
    QTRY_VERIFY(shown.size() >= 3);
    QVERIFY(player.isPlaying());
    QCOMPARE(shown[0].first().value<SxShownPicture>().number, 23);
    QCOMPARE(shown[1].first().value<SxShownPicture>().number, 0);
    QCOMPARE(shown[2].first().value<SxShownPicture>().number, 1);
}

void tst_Player::stepsFromKeyFrameToKeyFrame()
{
    CxPlayer player;
    QSignalSpy opened(&player, &CxPlayer::opened);
    player.open(m_recording);
    QVERIFY(opened.wait());
    QCOMPARE(player.info().keyFrames, (QList<int>{0, 5, 10, 15, 20}));
    player.seek(7);
    player.toPreviousKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 5);
    player.toPreviousKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 0);
    player.toPreviousKeyFrame(); // there is none
    player.toNextKeyFrame();
    player.toNextKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 10);
    player.seek(21);
    player.toNextKeyFrame(); // there is none
    QTRY_COMPARE(player.shownNumber(), 21);
}

void tst_Player::losesNoStep()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    for (int i = 0; i < 9; ++i)
        player.step(1); // faster than they are decoded: none is lost
    QTRY_COMPARE(player.shownNumber(), 9);
    for (int i = 0; i < 4; ++i)
        player.step(-1);
    QTRY_COMPARE(player.shownNumber(), 5);
}

void tst_Player::seeksAreBroughtInside()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.seek(3); // nothing is open
    player.step(1);
    player.setPlaying(true);
    QVERIFY(!player.isPlaying());
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(1000);
    QTRY_COMPARE(player.shownNumber(), 23);
    player.step(1);
    player.seek(-5);
    QTRY_COMPARE(player.shownNumber(), 0);
}

void tst_Player::steppingBackDecodesGroupOnce()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(15);
    QTRY_COMPARE(player.shownNumber(), 15);
    int const before = player.picturesDecoded();
    for (int number = 14; number >= 10; --number) {
        player.step(-1);
        QTRY_COMPARE(player.shownNumber(), number);
        QCOMPARE(player.picturesDecoded(), before + 5); // its group, once
    }
    for (int number = 11; number < 15; ++number) {
        player.step(1);
        QTRY_COMPARE(player.shownNumber(), number);
    }
    QCOMPARE(player.picturesDecoded(), before + 5);
    QCOMPARE(shown.last().first().value<SxShownPicture>().image, CxViewerFixture::decoded(m_recording, 14));
}

void tst_Player::closeForgetsPictures()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown), opened(&player, &CxPlayer::opened);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(20);
    player.close(); // the answer on its way is of no interest any more
    QVERIFY(!player.isOpen());
    QCOMPARE(player.shownNumber(), -1);
    shown.clear();
    player.open(m_recording);
    QTRY_COMPARE(opened.size(), 2);
    QTRY_COMPARE(shown.size(), 1);
    QCOMPARE(shown.first().first().value<SxShownPicture>().number, 0);
}

void tst_Player::saysWhyItDidNotOpen()
{
    CxPlayer player;
    QSignalSpy failed(&player, &CxPlayer::openFailed), shown(&player, &CxPlayer::shown);
    QString const missing = m_fixture->path(QStringLiteral("missing.h264"));
    player.open(missing);
    QVERIFY(failed.wait());
    QCOMPARE(failed.first().first().toString(), missing);
    QCOMPARE(failed.first()[1].toString(), QStringLiteral("%1: there is no such file.").arg(missing));
    QVERIFY(!player.isOpen());
    player.open(m_recording);
    QVERIFY(shown.wait());
}

QTEST_MAIN(tst_Player)
#include "tst_Player.moc"
