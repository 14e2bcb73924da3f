#pragma once

#include <QFile>

/// All bytes of a file; none when it cannot be read.
inline QByteArray fx_FileBytes(QString const& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes a file; false when not all of its bytes could be written.
inline bool fx_WriteFile(QString const& fileName, QByteArray const& bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}
