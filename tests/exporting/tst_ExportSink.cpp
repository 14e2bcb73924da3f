#include <QCryptographicHash>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <numeric>
#include <sys/stat.h>
#include <unistd.h>

#include "ExportSink.h"
#include "support/FileBytes.h"
#include "support/Rgb32Picture.h"
#include "support/Terminal.h"

/// What becomes of pictures that cannot be written: the export command's test has those that can.
class tst_ExportSink : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { std::signal(SIGPIPE, SIG_IGN); } // as in the program
    void init();

    void frameAskedForTwiceHasOneFile();
    void pictureThatCannotBeMadeIsNamed();
    void sheetThatWouldBeTooLargeSaysWhatHelps();
    void sheetWithoutAPictureIsAnError();
    void terminalTakesNoPictures();
    void streamEndsWithAnErrorWhereItIsFull();
    void streamEndsWithAnErrorWhenTheReaderOfItsPipeIsGone();
    void pictureThatCannotBeStreamedIsAnError();
    void hashesAreKeptForPrograms();

private:
    std::unique_ptr<IxExportSink> sink(SxExportRequest::Kind kind, QString const& output, int frames = 1);

    using Result = IxExportSink::Result;

    /// A picture made and taken as the export does it.
    Result take(IxExportSink& sink, int frame, SxPicBuf const& picture)
    {
        QSize const size(static_cast<int>(picture.width), static_cast<int>(picture.height));
        return sink.take(frame, sink.newMaker()(picture), size, &picture, m_error);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    CxOwnedPicture m_picture;
    SxPicBuf m_nothing;
    QString m_error;
};

void tst_ExportSink::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(fx_FillRgb32(m_picture, 4, 2, 'b', 'g', 'r'));
    m_nothing.setPicFormat(fx_PackedFormat(0, 0, 4, 8));
    m_error.clear();
}

std::unique_ptr<IxExportSink> tst_ExportSink::sink(SxExportRequest::Kind kind, QString const& output,
                                                   int frames)
{
    SxExportRequest request;
    request.kind = kind;
    request.recording = m_folder->filePath("in.h264");
    request.output = output == "-" ? output : m_folder->filePath(output);
    request.sheetColumns = 1;
    request.printsHashes = false;
    QVector<int> numbers(frames);
    std::iota(numbers.begin(), numbers.end(), 0);
    return fx_MakeExportSink(request, numbers, m_error);
}

void tst_ExportSink::frameAskedForTwiceHasOneFile()
{
    auto const files = sink(SxExportRequest::Kind::Files, "p_%03d.ppm");
    QVERIFY2(files, qPrintable(m_error));
    QVERIFY(take(*files, 7, m_picture.get()) == Result::Taken);
    QVERIFY(take(*files, 7, m_picture.get()) == Result::Taken);
    QVERIFY(files->finish(m_error) == Result::Taken);
    QCOMPARE(files->exported().pictures, 1);
    QCOMPARE(files->exported().size, QSize(4, 2));
    QCOMPARE(files->exportedJson().size(), 1);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"p_007.ppm"});
}

void tst_ExportSink::pictureThatCannotBeMadeIsNamed()
{
    auto const files = sink(SxExportRequest::Kind::Files, "p.png");
    QVERIFY2(files, qPrintable(m_error));
    QVERIFY(take(*files, 0, m_nothing) == Result::Error);
    QCOMPARE(m_error, m_folder->filePath("p.png") + ": the picture cannot be made: Invalid argument.");
    QCOMPARE(files->exported().pictures, 0);
}

void tst_ExportSink::sheetThatWouldBeTooLargeSaysWhatHelps()
{
    auto const sheet = sink(SxExportRequest::Kind::Sheet, "s.png", 3000);
    QVERIFY2(sheet, qPrintable(m_error));
    QVERIFY(take(*sheet, 0, m_picture.get()) == Result::Error);
    QCOMPARE(m_error, m_folder->filePath("s.png") + ": the sheet would be too large; take fewer frames.");
}

void tst_ExportSink::sheetWithoutAPictureIsAnError()
{
    auto const sheet = sink(SxExportRequest::Kind::Sheet, "s.png");
    QVERIFY2(sheet, qPrintable(m_error));
    QVERIFY(sheet->finish(m_error) == Result::Error);
    QVERIFY2(m_error.startsWith(m_folder->filePath("s.png")), qPrintable(m_error));
    QVERIFY(!QFile::exists(m_folder->filePath("s.png")));
    QCOMPARE(sheet->exportedJson().size(), 0);
}

void tst_ExportSink::terminalTakesNoPictures()
{
    std::unique_ptr<IxExportSink> stream;
    QByteArray written;
    {
        CxTerminal terminal(STDOUT_FILENO, 80);
        stream = sink(SxExportRequest::Kind::Stream, "-");
        written = terminal.take();
    }
    QVERIFY(!stream);
    QCOMPARE(written, QByteArray());
    QVERIFY2(m_error.startsWith("Standard output is a terminal; "), qPrintable(m_error));
}

void tst_ExportSink::streamEndsWithAnErrorWhereItIsFull()
{
    QVERIFY(QFile::link("/dev/full", m_folder->filePath("full")));
    auto const stream = sink(SxExportRequest::Kind::Stream, "full");
    QVERIFY2(stream, qPrintable(m_error));
    QVERIFY(take(*stream, 0, m_picture.get()) == Result::Error);
    QCOMPARE(m_error, m_folder->filePath("full") + ": No space left on device.");
    QCOMPARE(stream->exported().pictures, 0);
}

void tst_ExportSink::streamEndsWithAnErrorWhenTheReaderOfItsPipeIsGone()
{
    QByteArray const pipe = m_folder->filePath("pipe").toLocal8Bit();
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    int const reader = open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    auto const stream = sink(SxExportRequest::Kind::Stream, "pipe");
    QVERIFY2(stream, qPrintable(m_error));
    QVERIFY(take(*stream, 0, m_picture.get()) == Result::Taken);
    close(reader);
    QVERIFY(take(*stream, 1, m_picture.get()) == Result::Error);
    QCOMPARE(m_error, m_folder->filePath("pipe") + ": Broken pipe.");
    QCOMPARE(stream->exported().pictures, 1);
}

void tst_ExportSink::pictureThatCannotBeStreamedIsAnError()
{
    auto const stream = sink(SxExportRequest::Kind::Stream, "s.y4m");
    QVERIFY2(stream, qPrintable(m_error));
    QVERIFY(take(*stream, 0, m_nothing) == Result::Error);
    QVERIFY(!m_error.isEmpty());
    QCOMPARE(stream->exported().pictures, 0);
}

void tst_ExportSink::hashesAreKeptForPrograms()
{
    auto const hashes = sink(SxExportRequest::Kind::Hashes, "");
    QVERIFY2(hashes, qPrintable(m_error));
    QVERIFY(take(*hashes, 5, m_picture.get()) == Result::Taken);
    QVERIFY(hashes->finish(m_error) == Result::Taken);
    QByteArray const md5 =
        QCryptographicHash::hash(QByteArray("bgr\xFF").repeated(8), QCryptographicHash::Md5).toHex();
    QCOMPARE(hashes->exportedJson(), (QJsonArray{QJsonObject{{"frame", 5}, {"md5", QString(md5)}}}));
    QCOMPARE(hashes->exported().target, QString());
}

QTEST_GUILESS_MAIN(tst_ExportSink)
#include "tst_ExportSink.moc"
