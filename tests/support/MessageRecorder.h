#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects the critical messages logged while it lives; all others go to the handler before it. One
/// at a time, one thread.
class CxMessageRecorder
{
public:
    CxMessageRecorder();
    ~CxMessageRecorder();

    /// The messages since the last call, each whole as it was logged.
    QStringList takeRaw();

    /// The same without what stands before the text and without its quotes, for messages of the
    /// form `0x7f12 "/path/to/file.cpp" L 12 :  "text"`. Others come whole.
    QStringList takeTexts();

private:
    Q_DISABLE_COPY(CxMessageRecorder)
};
