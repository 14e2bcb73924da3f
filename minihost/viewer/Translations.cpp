#include "Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

static void fx_Install(QLocale const& locale, QString const& baseName, QString const& folder)
{
    auto* const translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, baseName, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

void fx_InstallTranslations(QLocale const& locale, QStringList const& pluginFiles)
{
    QString const folderName = QStringLiteral("/translations");
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QString const ofQt = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#else
    QString const ofQt = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#endif
    fx_Install(locale, QStringLiteral("qtbase"), ofQt);
    QDir const program(QCoreApplication::applicationDirPath());
    QString programs = program.path() + folderName;
    if (!QFileInfo::exists(programs)) // installed
        programs = program.absoluteFilePath(QStringLiteral(DATA_FROM_PROGRAM)) + folderName;
    fx_Install(QLocale(QLocale::English), QStringLiteral("minihost"), programs); // singular and plural
    fx_Install(locale, QStringLiteral("minihost"), programs);
    for (QString const& file : pluginFiles) {
        QFileInfo const info(file);
        fx_Install(locale, info.completeBaseName().mid(3), info.absolutePath() + folderName); // without "lib"
    }
}
