#include <QAction>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include "CodecOptions.h"
#include "RecordBar.h"
#include "support/FileBytes.h"
#include "support/NotedCopy.h"
#include "support/RecordDialogUser.h"
#include "support/ViewerWindow.h"

/// The first picture of \p recording that does not decode, or -1.
static int fx_FirstBroken(QString const& recording)
{
    for (int number = 0; number < 40; ++number) {
        if (CxViewerFixture::decoded(recording, number).isNull())
            return number;
    }
    return -1;
}

class tst_RecordControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void savesPartOfRecording();
    void notesTheRateOfALiveSource();
    void carriesTheNotesOfARecordingOver();
    void leavesOutBrokenPictures();
    void endsAtBrokenPictureWhenAsked();
    void warnsOfSkippedPictures();
    void tellsLevelThatTheEncoderRaised();
    void recordsUntilStopped();
    void stopEndsSaving();
    void allowsOneRecordingAtATime();
    void showsFailure();
    void offersToOpenWhatWasRecorded();
    void closingEndsRecording();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    std::unique_ptr<CxViewerWindow> m_viewer;
};

void tst_RecordControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_RecordControl::init()
{
    m_viewer = std::make_unique<CxViewerWindow>(*m_fixture);
    QVERIFY(m_viewer->isShown);
}

void tst_RecordControl::cleanup()
{
    m_viewer.reset();
    QSettings().clear();
    fx_SetCodecOptions(kFourCCH264, {});
}

void tst_RecordControl::savesPartOfRecording()
{
    QString const fileName = m_fixture->path(QStringLiteral("part.h264"));
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QCOMPARE(user.child<QSpinBox>("first")->value(), 0);
    QCOMPARE(user.child<QSpinBox>("last")->value(), 39);
    user.setNumber("first", 7);
    user.setNumber("last", 18);
    user.setFile(fileName);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    QTest::keyClick(user.child<QPushButton>("start"), Qt::Key_Space);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::pictures(fileName), 12);
    // The right ones: each looks more like its original than like that one's neighbour.
    auto const difference = [](QImage const& a, QImage const& b) {
        qint64 sum = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
        }
        return sum;
    };
    for (int const number : {0, 11}) {
        QImage const saved = CxViewerFixture::decoded(fileName, number);
        qint64 const same = difference(saved, CxViewerFixture::decoded(m_recording, number + 7));
        QVERIFY(same < difference(saved, CxViewerFixture::decoded(m_recording, number + 6)));
        QVERIFY(same < difference(saved, CxViewerFixture::decoded(m_recording, number + 8)));
    }
}

void tst_RecordControl::notesTheRateOfALiveSource()
{
    QString const source = m_fixture->path(QStringLiteral("source.y4m"));
    QByteArray const picture = "FRAME\n" + QByteArray(64 * 48 * 3 / 2, char(128));
    QVERIFY(fx_WriteFile(source, "YUV4MPEG2 W64 H48 F50:1\n" + picture.repeated(40)));
    m_viewer->window.openNamed(source);
    QTRY_VERIFY(!m_viewer->view->picture().image.isNull());
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("live.h264"));
    m_viewer->window.startRecording(choice);
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty());
    SxFoundSidecar const found = fx_FindSidecar(choice.request.outputFile);
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->rate.text(), QString("50"));
    QCOMPARE(found.sidecar->source, QString("source.y4m"));
}

void tst_RecordControl::carriesTheNotesOfARecordingOver()
{
    QString const noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    QVERIFY(m_viewer->open(noted));
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("of.h264"));
    choice.first = 3;
    choice.last = 5;
    m_viewer->window.startRecording(choice);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("saved")));
    SxFoundSidecar const found = fx_FindSidecar(choice.request.outputFile);
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->rate.text(), QString("25"));
    QCOMPARE(found.sidecar->rotation, 90);
    QCOMPARE(found.sidecar->source, noted + QString(", pictures 3-5"));
}

void tst_RecordControl::leavesOutBrokenPictures()
{
    QString const damaged = m_fixture->damage(m_recording, QStringLiteral("damaged.h264"));
    int const first = fx_FirstBroken(damaged);
    QVERIFY(first > 0);
    QVERIFY(m_viewer->open(damaged));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QString const fileName = m_fixture->path(QStringLiteral("whole.h264"));
    user.setFile(fileName);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    user.click("start");
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("not with every picture")));
    QVERIFY2(m_viewer->bar->text().contains(QStringLiteral("left out, the first is %1.").arg(first)),
             qPrintable(m_viewer->bar->text()));
    QCOMPARE(m_viewer->bar->kind(), CxMessageBar::Kind::Warning);
    int const saved = CxViewerFixture::pictures(fileName);
    QVERIFY(saved > first && saved < 40);
}

void tst_RecordControl::endsAtBrokenPictureWhenAsked()
{
    QString const damaged = m_fixture->damage(m_recording, QStringLiteral("damaged.h264"));
    int const first = fx_FirstBroken(damaged);
    QVERIFY(m_viewer->open(damaged));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QString const fileName = m_fixture->path(QStringLiteral("until.h264"));
    user.setFile(fileName);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    user.click("leaveOutBroken");
    user.click("start");
    QTRY_VERIFY2(m_viewer->bar->text().contains(QStringLiteral("ended at picture %1,").arg(first)),
                 qPrintable(m_viewer->bar->text()));
    QCOMPARE(m_viewer->bar->kind(), CxMessageBar::Kind::Warning);
    QCOMPARE(CxViewerFixture::pictures(fileName), first);
}

void tst_RecordControl::warnsOfSkippedPictures()
{
    QString const source = m_fixture->record(QStringLiteral("long.h264"), 600);
    QVERIFY(!source.isEmpty());
    QVERIFY(m_viewer->open(source));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QString const fileName = m_fixture->path(QStringLiteral("skipped.h264"));
    user.setFile(fileName);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_Home);
    auto* const warning = m_viewer->child<QLabel>("recordWarning");
    QVERIFY(warning->text().isEmpty());
    user.click("start");
    QTRY_VERIFY(warning->isVisible()); // while it happens
    QVERIFY2(warning->text().contains(QStringLiteral("skipped by the encoder")), qPrintable(warning->text()));
    QVERIFY2(warning->text().contains(QStringLiteral("Quality ")), qPrintable(warning->text()));
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty());
    int const skipped = 600 - CxViewerFixture::pictures(fileName);
    QVERIFY(skipped > 0);
    QString const text = m_viewer->bar->text();
    QVERIFY2(text.contains(QStringLiteral(" %1 picture(s) skipped").arg(skipped)), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("not with every picture")), qPrintable(text));
    QVERIFY2(!text.contains(QStringLiteral("is complete")), qPrintable(text));
    QCOMPARE(m_viewer->bar->kind(), CxMessageBar::Kind::Warning);
}

void tst_RecordControl::tellsLevelThatTheEncoderRaised()
{
    SxEncoderOptions lowest;
    lowest.level = fx_LevelFromName(QStringLiteral("1")).value();
    fx_SetCodecOptions(kFourCCH264, lowest.toMap());
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    user.setFile(m_fixture->path(QStringLiteral("level.h264")));
    user.click("start");
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty());
    QVERIFY2(
        m_viewer->bar->text().contains(QStringLiteral("made the recording level 1.1, not level 1 as asked")),
        qPrintable(m_viewer->bar->text()));
}

void tst_RecordControl::recordsUntilStopped()
{
    QString const fileName = m_fixture->path(QStringLiteral("stopped.h264"));
    m_viewer->openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = fileName;
    m_viewer->window.startRecording(choice);
    auto* const bar = m_viewer->window.findChild<CxRecordBar*>();
    auto* const text = bar->findChild<QLabel*>(QStringLiteral("recordText"));
    QVERIFY(bar->isVisible());
    QString const before = text->text();
    QTRY_VERIFY(text->text() != before);
    auto* const view = m_viewer->view;
    int const shown = view->picture().number;
    QTRY_VERIFY(view->picture().number > shown); // the picture lives on
    QTest::mouseClick(bar->findChild<QPushButton*>(QStringLiteral("recordStop")), Qt::LeftButton);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("Stopped")));
    QVERIFY(!bar->isVisible());
    int const pictures = CxViewerFixture::pictures(fileName);
    QVERIFY(pictures > 0);
    QVERIFY2(m_viewer->bar->text().contains(QStringLiteral("%1 picture").arg(pictures)),
             qPrintable(m_viewer->bar->text()));
    int const last = view->picture().number;
    QTRY_VERIFY(view->picture().number > last); // and after the recording, too
}

void tst_RecordControl::stopEndsSaving()
{
    // Long enough not to end by itself first.
    QString const source = m_fixture->record(QStringLiteral("long.h264"), 600);
    QVERIFY(!source.isEmpty());
    m_viewer->window.openRecording(source);
    QTRY_COMPARE(m_viewer->window.player().shownNumber(), 0);
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("cancelled.h264"));
    choice.first = 0;
    choice.last = 599;
    m_viewer->window.startRecording(choice);
    QTest::mouseClick(m_viewer->child<QPushButton>("recordStop"), Qt::LeftButton);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("Stopped")));
    QVERIFY(QFileInfo(choice.request.outputFile).size() < QFileInfo(source).size());
    QVERIFY(m_viewer->child<QAction>("record")->isEnabled());
}

void tst_RecordControl::allowsOneRecordingAtATime()
{
    m_viewer->openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("one.h264"));
    m_viewer->window.startRecording(choice);
    for (char const* const name : {"record", "open", "openCamera", "openSource"})
        QVERIFY2(!m_viewer->child<QAction>(name)->isEnabled(), name);
    m_viewer->window.openRecording(m_recording); // as by a drop
    QVERIFY(!m_viewer->window.player().isOpen());
    emit m_viewer->window.findChild<CxRecordBar*>()->stopRequested();
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty());
    QVERIFY(m_viewer->child<QAction>("open")->isEnabled());
}

void tst_RecordControl::showsFailure()
{
    m_viewer->openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QString()); // a folder
    m_viewer->window.startRecording(choice);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("failed")));
    auto* const bar = m_viewer->bar;
    QVERIFY2(bar->details().contains(QStringLiteral("Is a directory")), qPrintable(bar->details()));
    QVERIFY(!m_viewer->window.findChild<CxRecordBar*>()->isVisible());
    QTRY_VERIFY(m_viewer->view->picture().number > 0); // live as before
}

void tst_RecordControl::offersToOpenWhatWasRecorded()
{
    m_viewer->openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("offered.h264"));
    choice.request.maxPictures = 3;
    m_viewer->window.startRecording(choice);
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    auto* const action = m_viewer->child<QPushButton>("messageAction");
    QVERIFY(action->isVisible());
    QTest::mouseClick(action, Qt::LeftButton);
    QTRY_COMPARE(m_viewer->window.player().info().count, 3);
}

void tst_RecordControl::closingEndsRecording()
{
    QString const fileName = m_fixture->path(QStringLiteral("closing.h264"));
    m_viewer->openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = fileName;
    m_viewer->window.startRecording(choice);
    auto* const text = m_viewer->child<QLabel>("recordText");
    QString const before = text->text();
    QTRY_VERIFY(text->text() != before);
    m_viewer.reset();
    QVERIFY(CxViewerFixture::pictures(fileName) > 0);
}

QTEST_MAIN(tst_RecordControl)
#include "tst_RecordControl.moc"
