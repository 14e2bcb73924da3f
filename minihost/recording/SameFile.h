#pragma once

#include <QString>

struct stat;

/// What "-" as the name of an output stands for.
constexpr char kStandardOutputName[] = "/dev/stdout";

/// True when both describe one file, pipe or device.
bool fx_IsSameInode(struct stat const& a, struct stat const& b);

/// True when both names lead to one existing regular file, be it through links, hard or symbolic, or
/// different paths; so writing one would destroy the other. "-" as \p source is standard input, and a
/// "file:" before it is no part of its name.
bool fx_IsSameFile(QString const& source, QString const& output);

/// True when this process has the regular file open to read it, by whatever name: FFmpeg knows many, as
/// "concat:a.h264|b.h264".
bool fx_IsReadHere(QString const& fileName);

/// True when \p fileName leads to what standard output writes to, be it a file, a pipe or a device.
bool fx_IsStandardOutput(QString const& fileName);
