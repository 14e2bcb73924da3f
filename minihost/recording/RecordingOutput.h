#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>

class QFile;

/// Where a recording goes. A regular file is held against other recordings as long as the object lives. What
/// else there is, pipes, devices and whatever standard output is, gets its bytes through a file in memory,
/// where they can be counted.
class CxRecordingOutput
{
public:
    CxRecordingOutput() = default;
    ~CxRecordingOutput(); ///< leaves no empty file where there was none
    CxRecordingOutput(CxRecordingOutput const&) = delete;
    CxRecordingOutput& operator=(CxRecordingOutput const&) = delete;

    /// Makes the file when there is none, but leaves alone what is in one. A pipe without a reader is waited
    /// for until \p stop, which may be null. \return false with \p error one sentence, or empty when stopped.
    bool open(QString const& fileName, std::atomic<bool> const* stop, QString& error);

    bool isRelayed() const { return m_memory >= 0; } ///< it is no regular file

    QString const& saverFile() const { return m_saverFile; } ///< what the saver is to write

    /// When relayed: hands on what is in the saver's file, which was flushed. \return false when that cannot
    /// be written; why() then says why.
    bool passOn();

    /// Why bytes could not be written, half a sentence, mostly as the system words it; empty when they can be
    /// now. For a regular file this is found out by trying, with the saver's file closed.
    QString why();

    qint64 size() const;     ///< bytes that have arrived
    QByteArray head() const; ///< the first of them: room for parameter sets

    /// Takes off what lies behind \p end, as far as it can still be taken back.
    void cutOff(qint64 end);

private:
    bool openFile(QString& error);
    bool openOther(QString& error);
    bool openMemory(QString& error);
    bool writeOut(char const* bytes, size_t count);

    QString m_fileName;
    QString m_saverFile;
    std::atomic<bool> const* m_stop = nullptr;
    int m_out = -1;
    int m_memory = -1;   ///< the file in memory; -1 for a regular file
    qint64 m_passed = 0; ///< bytes of it that were written to m_out
    QByteArray m_head;   ///< of what was written to m_out
    int m_error = 0;     ///< errno of a write to m_out
    bool m_isNew = false;
};
