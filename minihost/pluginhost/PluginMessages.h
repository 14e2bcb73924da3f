#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Collects the critical messages that plug-ins log, as sentences for people.
///
/// While the object lives it is Qt's message handler: critical messages are kept here, all others go
/// to the handler before it. One at a time in a process, made in the main thread.
class CxPluginMessages
{
public:
    /// \param raw  also lets every critical message through unchanged, for a log.
    explicit CxPluginMessages(bool raw = false);
    ~CxPluginMessages();
    CxPluginMessages(CxPluginMessages const&) = delete;
    CxPluginMessages& operator=(CxPluginMessages const&) = delete;

    /// The sentences logged in the calling thread since its last call, oldest first, none twice in a row.
    /// Dumps of several lines are for the log and left out.
    static QStringList take();

    /// What a logged line says: "No file." for `0x7f01 Saver.cpp L 31 :  "CxSaver::save(): No file."`
    /// A line of another shape is returned as it is.
    static QString readable(QString const& logged);
};
