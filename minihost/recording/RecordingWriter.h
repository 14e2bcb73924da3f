#pragma once

#include <QStringList>

#include "IxImageDataSaver.h"
#include "PluginHost.h"
#include "Recorder.h"
#include "RecordingOutput.h"
#include "SkippedPictures.h"
#include "SxPicBuf.h"

class QFile;

/// Notes what failed. The first failure is told; what follows from it is not.
void fx_Fail(SxRecordSummary& summary, QString const& sentence, RecordFailure failure = RecordFailure::Other);

/// The writing half of a recording: the plug-in's saver, and the file that it fills. What becomes of both
/// stands in the summary.
class CxRecordingWriter
{
public:
    CxRecordingWriter(SxRecordRequest const& request, SxRecordSummary& summary); ///< both outlive it

    /// Makes the saver and tells it about the recording. \param expected  pictures that will come, or -1
    /// \return false when something failed, or, without an error, when the request's stop flag ended the wait
    ///         for the reader of a pipe.
    bool begin(SxPicBuf const& first, int expected);

    /// Has the saver write a picture and finds out what it did with it; false when that failed.
    bool save(SxPicBuf const& picture);
    bool isRefused() const { return m_isRefused; } ///< the saver did not save a picture

    /// Closes the file by deleting the saver, and sees what went wrong with it.
    void finish();

private:
    bool openOutput();
    bool tryEncoder(SxPicBuf const& first);
    bool passOn();
    void keepCompletePictures();
    void failWithoutMemory();
    QString outputError(QStringList const& messages, QString const& cause = QString()) const;

    SxRecordRequest const& m_request;
    SxRecordSummary& m_summary;
    CxRecordingOutput m_output;
    bool m_replacesFile = false; ///< a recording, or whatever else has bytes to lose
    SxCreated<IxImageDataSaver> m_saver;
    QFile* m_file = nullptr;  ///< the saver's, and gone with it
    bool m_isWriting = false; ///< it is open, so what was in it is gone
    bool m_isRefused = false;
    QStringList m_messages; ///< what the saver said then
    CxSkippedPictures m_pictures;
};
