#pragma once

#include <memory>

#include "IxPictureSource.h"
#include "RecordingReader.h"

/// The pictures of a part of a recording, to be saved anew.
class CxRecordingSource : public IxPictureSource
{
public:
    /// \param recording  not opened yet; the first next() does.
    /// \param first, last  numbers of the pictures at the ends, both included.
    CxRecordingSource(std::unique_ptr<CxRecordingReader> recording, QString fileName, int first, int last);

    void moveToThread(QThread* thread) { m_recording->moveToThread(thread); } ///< that reads and deletes this

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error; }
    int expectedPictures() const override { return m_last - m_first + 1; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }

private:
    std::unique_ptr<CxRecordingReader> m_recording;
    QString m_fileName;
    int m_first;
    int m_last;
    int m_next;
    bool m_isOpen = false;
    QString m_error;
};
