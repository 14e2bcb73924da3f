#include "PluginFault.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>

/// `_ZN6CxRTTI8instanceEv` gives `CxRTTI::instance()`; other names stay.
static QString fx_Demangled(QString const& symbol)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(symbol.toLatin1().constData(), nullptr, nullptr, &status), &std::free);
    return name ? QString::fromLatin1(name.get()) : symbol;
}

static QString fx_Captured(char const* pattern, QString const& text)
{
    return QRegularExpression(QString::fromLatin1(pattern)).match(text).captured(1);
}

QString fx_WhyNotLoaded(QString const& fileName, QString const& qtError)
{
    QString const symbol = fx_Captured("undefined symbol: ([^\\s,)]+)", qtError);
    if (!symbol.isEmpty())
        return QStringLiteral("it needs %1, which neither this host nor a library provides")
            .arg(fx_Demangled(symbol));
    QString const library = fx_Captured("([^\\s(/]+): cannot open shared object file", qtError);
    if (!library.isEmpty() && library != QFileInfo(fileName).fileName())
        return QStringLiteral("the library %1, which it needs, is not there").arg(library);
    QString const version = fx_Captured("incompatible Qt library\\. \\(([\\d.]+)\\)", qtError);
    if (!version.isEmpty())
        return QStringLiteral("it is built with Qt %1, which does not go with this program's %2")
            .arg(version, QLatin1String(qVersion()));
    // Qt has several sentences for each, others in each version.
    if (qtError.contains(QLatin1String("ELF object")) || qtError.contains(QLatin1String("file too short")) ||
        QFileInfo(fileName).size() == 0)
        return QStringLiteral("the file is no shared library, or not a whole one");
    if (qtError.contains(QLatin1String("meta data")) ||
        qtError.contains(QLatin1String("not a valid Qt plugin")))
        return QStringLiteral("it is a library, but no Qt plug-in");
    return qtError;
}
