#pragma once

#include <QFile>
#include <QList>
#include <QObject>

#include "AnnexB.h"
#include "IxImageDataLoader.h"
#include "IxVideoAccessor.h"
#include "SxPicBufInfo.h"

class CxOpenH264Decoder;

/// Opens a raw H.264 file (Annex B byte stream, as the saver writes it) as a video: indexes its
/// frames in one pass and serves any of them decoded, or coded for a decoder.
///
/// Opens lazily at the first question that needs the file. A host opens one file once per object:
/// close() keeps the index, and opening again appends to it. One thread at a time.
///
/// A recording in progress opens with what it holds at that moment; what is appended later takes another
/// loader. The file may shrink or vanish while it is open: reads then fail. But it must not be cut while
/// open() itself runs: the scan reads a mapping, and touching bytes that were taken from under it raises
/// SIGBUS, which ends the process. A host whose files are truncated in place by others opens a copy.
class CxH264VideoLoader : public QObject, public IxImageDataLoader, public IxVideoAccessor
{
    Q_OBJECT
    Q_CLASSINFO("CustomName", "H.264 Video Loader (*.264)")

public:
    Q_INVOKABLE CxH264VideoLoader() {} // the host creates us through the meta-object

    bool load() override;
    int sequenceSize() override;

    /// A new CxImageData with frame \p frame as RGB32 and its time, counted at loadedFps(), in
    /// microseconds. The caller deletes it. Null when there is no such frame or it cannot be decoded.
    IxChainData* loadedData(int frame) override;
    QString inputFile() override;
    void setInputFile(QString const& fileName) override; ///< without effect on an open file
    double
    loadedFps() override; ///< 30, since a raw stream carries no usable rate; 0 when it cannot be opened
    QList<CxImageFormat> supportedImageFormats() override;

    int framesCount() override;
    unsigned long frameDataSize(int frame) override; ///< 0 for a bad number; does not open the file

    /// Copies a coded frame. Deliberate: the result only says whether there is a buffer. The frame
    /// was copied when \p size was set to its frameDataSize(); after a short read the buffer is zero.
    bool frameData(int frame, void* buffer, unsigned long& size) override;
    int lastProcessedFrame() override;           ///< the last frame that loadedData() delivered, or -1
    void keyFrames(QList<int>& frames) override; ///< does not open the file

    /// Maps and indexes the input file. False, with the index as it was, when it cannot be opened
    /// (reported), does not begin with a start code or holds no sequence parameter set.
    bool open();
    void close();

    void* allocBuffer(unsigned long size); ///< a block from malloc(); null without memory
    void freeBuffer(void* buffer);         ///< gives a block of allocBuffer() back

private:
    using SxIndexEntry = SxFrameRange; ///< one for each frame, in file order

    bool index(size_t size);

    QString m_inputFile;
    QFile m_file;
    uchar* m_data = nullptr; ///< the whole file while it is open; read by index() only
    double m_fps = 0.0;
    SxPicBufInfo m_format;                  ///< of the pictures that loadedData() delivers
    CxOpenH264Decoder* m_decoder = nullptr; ///< a child of this object, while the file is open
    int m_lastProcessedFrame = -1;
    QList<SxIndexEntry> m_index;
    QList<int> m_keyFrames; ///< kept ready, since the decoder asks at every frame
};
