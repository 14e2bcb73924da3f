#pragma once

#include <QElapsedTimer>
#include <QString>

/// One line that tells how far a long piece of work is, rewritten at most ten times a second.
class CxProgressLine
{
public:
    /// Time counts from here. \param total  pictures to come, or -1 when unknown
    explicit CxProgressLine(int total = -1);
    void setTotal(int total) { m_total = total; }

    /// \param bytes    written so far, or -1 when unknown
    /// \param remark   shown at the end, may be empty
    void update(int done, qint64 bytes, QString const& remark);

private:
    int m_total;
    QElapsedTimer m_running;
    QElapsedTimer m_sinceShown; ///< or since the start: the first figures would mean nothing
};
