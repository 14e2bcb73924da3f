#include "ShellWord.h"

#include <QRegularExpression>

QString fx_ShellWord(QString const& fileName)
{
    static QRegularExpression const kPlain(QStringLiteral("^[\\w./+:@%-]+$"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    QString name = fileName.startsWith(QLatin1Char('-')) ? QStringLiteral("./") + fileName : fileName;
    if (kPlain.match(name).hasMatch())
        return name;
    return QLatin1Char('\'') + name.replace(QLatin1Char('\''), QStringLiteral("'\\''")) + QLatin1Char('\'');
}
