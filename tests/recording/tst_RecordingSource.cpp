#include <QTest>

#include "CxPicBufAPI.h"
#include "PictureFormat.h"
#include "RecordingSource.h"
#include "support/FakeLoader.h"
#include "support/NotedCopy.h"
#include "support/ViewerFixture.h"

class tst_RecordingSource : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void givesPartOfRecording();
    void givesOnWhatTheSidecarNotes();
    void endsAtBrokenPicture();
    void leavesOutBrokenPictures();
    void pictureThatMemoryHasNoRoomForIsTold();
    void recordingThatIsNotThereIsTold();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_RecordingSource::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 24);
    QVERIFY(!m_recording.isEmpty());
}

void tst_RecordingSource::givesPartOfRecording()
{
    CxRecordingSource source(std::make_unique<CxRecordingReader>(), m_recording, 7, 9);
    QCOMPARE(source.expectedPictures(), 3);
    CxOwnedPicture picture;
    for (int number = 7; number <= 9; ++number) {
        QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
        SxPicBuf const& pixels = picture.get();
        QImage const image(static_cast<uchar const*>(pixels.data), 320, 180, static_cast<int>(pixels.pitch),
                           QImage::Format_RGB32);
        QCOMPARE(image, CxViewerFixture::decoded(m_recording, number));
        QCOMPARE(pixels.timestamp, static_cast<quint64>((number - 7) * 1e6 / 30.0));
    }
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::End);
}

void tst_RecordingSource::givesOnWhatTheSidecarNotes()
{
    QString const copy = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, copy));
    CxRecordingSource source(std::make_unique<CxRecordingReader>(), copy, 7, 9);
    CxOwnedPicture picture;
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
    QCOMPARE(source.rate().text(), QString("25"));
    QCOMPARE(source.rotation(), 90);
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
    QCOMPARE(picture.get().timestamp, quint64{40000});
}

void tst_RecordingSource::endsAtBrokenPicture()
{
    SxLoaderLog log;
    CxRecordingSource source(std::make_unique<CxRecordingReader>(std::make_unique<CxFakeLoader>(log)),
                             m_recording, 12, 20);
    CxOwnedPicture picture;
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Error);
    QVERIFY(source.errorText().contains(QStringLiteral("Picture 13 ")));
    QCOMPARE(source.broken(), QVector<int>{13});
}

void tst_RecordingSource::leavesOutBrokenPictures()
{
    SxLoaderLog log;
    CxRecordingSource source(std::make_unique<CxRecordingReader>(std::make_unique<CxFakeLoader>(log)),
                             m_recording, 12, 15);
    source.leaveOutBroken();
    CxOwnedPicture picture;
    for (int const number : {12, 14, 15}) {
        QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
        QCOMPARE(int(picture.get().data[0]), number);
    }
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::End);
    QCOMPARE(source.broken(), QVector<int>{13});
}

/// Its pictures say that they are larger than any memory.
class CxVastLoader : public CxFakeLoader
{
public:
    using CxFakeLoader::CxFakeLoader;
    IxChainData* loadedData(int) override
    {
        SxPicBuf picture;
        if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(4, 4, 4, 8), false, 0))
            return nullptr;
        picture.width = picture.height = 1U << 30;
        auto* const data = new CxImageData;
        data->setPicBuf(picture);
        return data;
    }
};

void tst_RecordingSource::pictureThatMemoryHasNoRoomForIsTold()
{
    SxLoaderLog log;
    CxRecordingSource source(std::make_unique<CxRecordingReader>(std::make_unique<CxVastLoader>(log)),
                             m_recording, 12, 20);
    CxOwnedPicture picture;
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Error);
    QCOMPARE(source.errorText(),
             QString("There is not enough memory for a picture of 1073741824 x 1073741824."));
}

void tst_RecordingSource::recordingThatIsNotThereIsTold()
{
    QString const fileName = m_fixture->path(QStringLiteral("none.h264"));
    CxRecordingSource source(std::make_unique<CxRecordingReader>(), fileName, 0, 9);
    CxOwnedPicture picture;
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Error);
    QCOMPARE(source.errorText(), fileName + QStringLiteral(": there is no such file."));
    // It never was damaged, and has nothing else to say.
    QVERIFY(!source.isDamaged());
    QCOMPARE(source.takeWarnings(), QStringList());
    QVERIFY(source.knowsSignificantBits());
}

QTEST_MAIN(tst_RecordingSource)
#include "tst_RecordingSource.moc"
