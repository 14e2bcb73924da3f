#include "ShellWord.h"

#include <QRegularExpression>

QString fx_ShellWord(QString const& fileName)
{
    static QRegularExpression const kPlain(QStringLiteral("^[\\w./+:@%-]+$"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    bool const isMistakable = fileName.startsWith(QLatin1Char('-')) ||
                              fileName.section(QLatin1Char('/'), 0, 0).contains(QLatin1Char(':'));
    QString name = isMistakable ? QStringLiteral("./") + fileName : fileName;
    if (kPlain.match(name).hasMatch())
        return name;
    return QLatin1Char('\'') + name.replace(QLatin1Char('\''), QStringLiteral("'\\''")) + QLatin1Char('\'');
}
