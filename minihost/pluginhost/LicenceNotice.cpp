#include "LicenceNotice.h"

#include <algorithm>

#include "CxPlugin.h"

QString fx_LicenceNotice(CxPlugin const& plugin)
{
    QString given = plugin.copyrightNotice();
    bool const mayBeBytes =
        std::all_of(given.cbegin(), given.cend(), [](QChar letter) { return letter.unicode() < 0x100; });
    if (!mayBeBytes)
        return given;
    QByteArray const bytes = given.toLatin1();
    QString const read = QString::fromUtf8(bytes);
    // What is no UTF-8 comes back with other bytes. Hardly any text in Latin-1 reads as UTF-8 by chance.
    return read.toUtf8() == bytes ? read : given;
}
