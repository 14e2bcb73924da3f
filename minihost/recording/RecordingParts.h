#pragma once

#include "IxPictureSource.h"
#include "PictureFormat.h"
#include "RateMeter.h"
#include "Recorder.h"

/// What ends one file of a recording and begins the next: that much of the source's time, or that many bytes.
/// What is 0 ends none.
struct SxSplit
{
    qint64 microseconds = 0;
    qint64 bytes = 0;
};

/// "out_001.h264" for "out.h264" and 1.
QString fx_NumberedRecording(QString const& fileName, int number);

/// Another source, from one file's end to the next: each part ends before the picture that begins the next
/// one, which keeps it. A part's times begin at 0.
class CxSourceInParts : public IxPictureSource
{
public:
    CxSourceInParts(IxPictureSource& source, SxSplit const& split); ///< \p source outlives it

    void beginPart();
    bool hasMore() const { return m_hasKept; } ///< a picture that begins the next part
    void noteBytes(qint64 bytes);              ///< of the part so far, in its file

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_source.errorText(); }
    int expectedPictures() const override { return -1; } ///< how many will be in a part nobody knows
    bool hasEnd() const override { return m_source.hasEnd(); }
    bool isLive() const override { return m_source.isLive(); }
    SxMissingPictures missing() const override; ///< those between two parts belong to the first
    SxPictureRate rate() const override;        ///< an average is that of the part
    int rotation() const override { return m_source.rotation(); }
    SxPixelShape pixelShape() const override { return m_source.pixelShape(); }
    QSize wholeSize() const override { return m_source.wholeSize(); }
    bool knowsSignificantBits() const override { return m_source.knowsSignificantBits(); }
    QStringList takeWarnings() override { return m_source.takeWarnings(); }
    bool isDamaged() const override { return m_source.isDamaged(); }

private:
    bool endsPart(SxPicBuf const& picture);

    IxPictureSource& m_source;
    SxSplit m_split;
    CxOwnedPicture m_kept;
    bool m_hasKept = false;
    bool m_isFromKept = false; ///< the picture that came last was that
    bool m_isFirst = true;     ///< of all
    bool m_isFull = false;
    int m_inPart = 0;      ///< pictures
    CxRateMeter m_meter;   ///< of these
    quint64 m_begin = 0;   ///< microseconds at which the part begins
    quint64 m_nextEnd = 0; ///< microseconds
};

/// Records into numbered files, each a recording of its own, without losing a picture in between.
/// \param record  makes one of them; called with the same source and the request for that file.
/// \return what became of each. After a failure or a stop none follows.
QVector<SxRecordSummary>
fx_RecordInParts(IxPictureSource& source, SxRecordRequest const& request, SxSplit const& split,
                 std::function<SxRecordSummary(CxSourceInParts&, SxRecordRequest const&)> const& record);
