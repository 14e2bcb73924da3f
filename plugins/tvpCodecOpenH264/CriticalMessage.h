#pragma once

#include <QDebug>
#include <QString>
#include <QThread>

/// Logs one critical message in the form of the host's own: thread, file, line, text.
/// \p prefix names the class and the operation and has one place for \p message:
/// `TVP_CRITICAL("CxH264VideoSaver::save(): %1", "Filename is empty.")`.
#define TVP_CRITICAL(prefix, message)                                                \
    (qCritical() << QThread::currentThreadId() << __FILE__ << "L" << __LINE__ << ":" \
                 << "" << QString(QLatin1String(prefix)).arg(message))
