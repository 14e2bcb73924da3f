#pragma once

#include <QSize>
#include <QVector>
#include <memory>

#include "ExportSink.h"
#include "RecordingReader.h"

class CxPicturesAhead;
struct SxExportArguments;

enum class ExportOutcome { Done, ReaderGone, Interrupted, BadInput, OutputFailed };

/// Decodes frames in the order asked, by several threads where that helps, and gives each to the sink.
class CxExportFeeder
{
public:
    CxExportFeeder(CxRecordingReader& recording, SxExportArguments const& arguments, IxExportSink& sink);
    ~CxExportFeeder();

    ExportOutcome feed(QVector<int> const& frames);

    QString const& error() const { return m_error; }          ///< one sentence, unless all went well
    QVector<int> const& leftOut() const { return m_leftOut; } ///< frames that cannot be decoded, ascending
    QString leftOutText() const;                              ///< one sentence about them

private:
    ExportOutcome feedOne(QVector<int> const& frames, int place);
    ExportOutcome feedAhead(QVector<int> const& frames, int place);
    ExportOutcome decodeOne(int frame);
    ExportOutcome write(int frame, SxMadePicture const& made, QSize size, SxPicBuf const* picture);
    void explainStop(int done, int wanted);

    CxRecordingReader& m_recording;
    SxExportArguments const& m_arguments;
    IxExportSink& m_sink;
    MakePicture m_make;
    std::unique_ptr<CxPicturesAhead> m_ahead; ///< null when there is none, or none any more
    std::unique_ptr<CxImageData> m_picture;
    QVector<int> m_leftOut;
    QString m_firstCause; ///< half a sentence, of the first frame left out
    QString m_error;
};
