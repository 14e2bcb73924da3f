#pragma once

#include <QString>

/// A recording to a container goes into a raw file beside it first, "out.mp4.h264" for "out.mp4", since that
/// plays as far as it got, whatever ends it. Once all is in the container it goes.
QString fx_RawFileOf(QString const& container);

/// Which container a raw file stands for, by its name; empty for others.
QString fx_ContainerOf(QString const& rawFile);

/// True while somebody records to the file.
bool fx_IsBeingRecorded(QString const& rawFile);

/// The command that puts the raw file into its container, for a shell.
QString fx_CommandToFinish(QString const& rawFile);

/// What is to be told of the raw file that \p container left behind when its recording was killed, one
/// sentence; empty when there is none with anything in it, or the recording goes on.
QString fx_UnfinishedText(QString const& container);

/// Removes a recording, with its sidecar, whose pictures all are in \p output, after seeing to it that this
/// is on the disk. \return false, with \p error one sentence, when it stays.
bool fx_RemoveHandedOn(QString const& recording, QString const& output, QString& error);
