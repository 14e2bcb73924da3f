#include <QTemporaryDir>
#include <QtTest>

#include "FFmpegSource.h"
#include "PictureSizes.h"
#include "support/PictureFiles.h"
#include "support/VideoFile.h"

Q_DECLARE_METATYPE(SxPictureChanges)

/// Pictures that will not come out at one size are told before one of them is recorded.
class tst_PictureSizes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sizesThatDifferAreNamed_data();
    void sizesThatDifferAreNamed();
    void stopEndsTheLook();

private:
    QString path(QString const& name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

/// A grey JPEG that says, in numbers of Exif, how it is to be turned.
static QByteArray fx_TurnedJpeg(int width, int height, char orientation)
{
    QByteArray const segment = QByteArray::fromHex("ffe1002245786966000049492a00080000000100120103000100"
                                                   "0000") +
                               orientation + QByteArray(7, '\0');
    return fx_CodedPicture(AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P, width, height,
                           QByteArray(width * height * 3 / 2, char(100)))
        .insert(2, segment);
}

void tst_PictureSizes::initTestCase()
{
    CxFFmpegSource::setLogShown(false);
    auto const pgm = [](int width, int height) {
        return fx_PnmFile(width, height, 1, 255, QByteArray(width * height, 'a'));
    };
    QVERIFY(fx_WriteFile(path("a.pgm"), pgm(64, 48)));
    QVERIFY(fx_WriteFile(path("b.pgm"), pgm(64, 48)));
    QVERIFY(fx_WriteFile(path("odd.pgm"), pgm(65, 49)));
    QVERIFY(fx_WriteFile(path("tall.pgm"), pgm(48, 64)));
    QVERIFY(fx_WriteFile(path("text.pgm"), "Dear diary"));
    QVERIFY(fx_WriteFile(path("words"), "Dear diary"));
    QVERIFY(fx_WriteFile(path("lying.jpg"), fx_TurnedJpeg(48, 64, 6)));
    QVERIFY(fx_WriteFile(path("upright.jpg"), fx_TurnedJpeg(64, 48, 1)));
    QVERIFY(fx_WriteVideo(path("video.avi"), "avi", AV_CODEC_ID_MPEG4, 5)); // 64 x 48
}

void tst_PictureSizes::sizesThatDifferAreNamed_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<SxPictureChanges>("changes");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("says"); // behind the folder's name; empty: nothing
    SxPictureChanges const none;
    SxPictureChanges even;
    even.isEven = true;
    SxPictureChanges scaled;
    scaled.scale = QSize(32, 32);
    SxPictureChanges part;
    part.crop = QRect(8, 8, 40, 40);
    SxPictureChanges turned;
    turned.turnsItself = true;
    auto const row = [](char const* name, QStringList const& files, SxPictureChanges const& changes,
                        QString const& says, int first = 0,
                        int end = 100) { QTest::newRow(name) << files << changes << first << end << says; };
    QString const tall(
        "tall.pgm is 48 x 64, those before it are 64 x 48: a recording has one size, to which --scale would "
        "bring them all.");
    row("alike", {"a.pgm", "b.pgm"}, none, "");
    row("one differs", {"a.pgm", "b.pgm", "tall.pgm", "a.pgm"}, none, tall);
    row("scaled", {"a.pgm", "tall.pgm"}, scaled, "");
    row("the same part of each", {"a.pgm", "odd.pgm", "tall.pgm"}, part, "");
    part.crop = QRect(8, 8, 50, 40);
    row("a part that one does not have", {"a.pgm", "tall.pgm"}, part,
        "tall.pgm is 48 x 64; 50 x 40 from column 8 and row 8 on are not within it.");
    row("odd, made even", {"a.pgm", "odd.pgm"}, even, "");
    row("unreadable ones do not count", {"text.pgm", "a.pgm", "missing.pgm", "words", "b.pgm"}, none, "");
    row("before the part", {"tall.pgm", "a.pgm", "b.pgm"}, none, "", 1);
    row("behind the part", {"a.pgm", "b.pgm", "tall.pgm"}, none, "", 0, 2);
    row("left out ones take no number", {"a.pgm", "text.pgm", "tall.pgm"}, none, tall, 0, 2);
    row("a video among them", {"a.pgm", "video.avi", "tall.pgm"}, none, tall, 0, 2);
    row("turned as they say", {"lying.jpg", "upright.jpg"}, turned, "");
    row("turned as they say, unreadable ones aside", {"text.pgm", "lying.jpg", "upright.jpg"}, turned, "");
    row("turned as they say, one differs", {"lying.jpg", "text.pgm", "tall.pgm"}, turned, tall);
    row("not turned", {"upright.jpg", "lying.jpg"}, none, QString(tall).replace("tall.pgm", "lying.jpg"));
}

void tst_PictureSizes::sizesThatDifferAreNamed()
{
    QFETCH(QStringList, files);
    QFETCH(SxPictureChanges, changes);
    QFETCH(int, first);
    QFETCH(int, end);
    QFETCH(QString, says);
    for (QString& file : files)
        file = path(file);
    QCOMPARE(fx_SizeObstacle(files, changes, nullptr, first, end),
             says.isEmpty() ? QString() : m_folder.path() + "/" + says);
}

void tst_PictureSizes::stopEndsTheLook()
{
    std::atomic<bool> const stop{true};
    QCOMPARE(fx_SizeObstacle({path("a.pgm"), path("tall.pgm")}, {}, &stop), QString());
}

QTEST_GUILESS_MAIN(tst_PictureSizes)
#include "tst_PictureSizes.moc"
