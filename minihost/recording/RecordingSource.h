#pragma once

#include <QVector>
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

    /// Goes on behind pictures that do not decode; without this the first of them ends it with an error.
    void leaveOutBroken() { m_leavesOutBroken = true; }

    /// Numbers of the pictures that did not decode. For the thread that reads, or once it has ended.
    QVector<int> const& broken() const { return m_broken; }

    void moveToThread(QThread* thread) { m_recording->moveToThread(thread); } ///< that reads and deletes this

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error; }
    int expectedPictures() const override { return m_last - m_first + 1; }
    SxPictureRate rate() const override { return m_recording->rate(); }
    int rotation() const override;
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return !m_broken.isEmpty(); }

private:
    std::unique_ptr<CxRecordingReader> m_recording;
    QString m_fileName;
    int m_first;
    int m_last;
    int m_next;
    bool m_isOpen = false;
    bool m_leavesOutBroken = false;
    QVector<int> m_broken;
    QString m_error;
};
