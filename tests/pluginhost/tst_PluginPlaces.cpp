#include "PluginPlaces.h"

#include <QTemporaryDir>
#include <QtTest>

/// Where plug-ins are looked for.
class tst_PluginPlaces : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void fileFolderAndPrefixAllLeadToThePlugin_data();
    void fileFolderAndPrefixAllLeadToThePlugin();
    void folderWithPluginsIsNoPrefix();
    void folderIsSearchedInTheOrderOfNames();
    void environmentIsAskedWithoutAPath();
    void placeWithoutPluginsIsNamed_data();
    void placeWithoutPluginsIsNamed();

private:
    /// Makes an empty file, and the folders to it. \return its name
    QString make(QString const& name)
    {
        QString const path = m_root->filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        return file.open(QIODevice::WriteOnly) ? path : QString();
    }

    std::unique_ptr<QTemporaryDir> m_root;
};

static QString const kInstalled = QStringLiteral(PLUGINS_BELOW_PREFIX "/libtvpA.so");

void tst_PluginPlaces::init() { m_root = std::make_unique<QTemporaryDir>(); }

void tst_PluginPlaces::fileFolderAndPrefixAllLeadToThePlugin_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("file") << kInstalled;
    QTest::newRow("folder") << PLUGINS_BELOW_PREFIX;
    QTest::newRow("prefix") << ".";
}

void tst_PluginPlaces::fileFolderAndPrefixAllLeadToThePlugin()
{
    QFETCH(QString, place);
    QString const plugin = make(kInstalled);
    QString error;
    QCOMPARE(fx_FindPlugins(m_root->filePath(place), error), QStringList{plugin});
}

void tst_PluginPlaces::folderWithPluginsIsNoPrefix()
{
    make(kInstalled);
    QString const plugin = make("libtvpB.so");
    QString error;
    QCOMPARE(fx_FindPlugins(m_root->path(), error), QStringList{plugin});
}

void tst_PluginPlaces::folderIsSearchedInTheOrderOfNames()
{
    QString const second = make("libtvpB.so");
    QString const first = make("libtvpA.so");
    make("libother.so");
    QString error;
    QCOMPARE(fx_FindPlugins(m_root->path(), error), (QStringList{first, second}));
}

void tst_PluginPlaces::environmentIsAskedWithoutAPath()
{
    QString const plugin = make(kInstalled);
    QVERIFY(qputenv("MINIHOST_PLUGIN_PATH", QFile::encodeName(m_root->path())));
    QString error;
    QStringList const found = fx_FindPlugins(QString(), error);
    qunsetenv("MINIHOST_PLUGIN_PATH");
    QCOMPARE(found, QStringList{plugin});
}

void tst_PluginPlaces::placeWithoutPluginsIsNamed_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("missing") << "missing"
                             << "%1: there is no such plug-in file or folder.";
    QTest::newRow("empty") << "."
                           << "%1: the folder holds no plug-in (libtvp*.so).";
}

void tst_PluginPlaces::placeWithoutPluginsIsNamed()
{
    QFETCH(QString, place);
    QFETCH(QString, sentence);
    QString error;
    QVERIFY(fx_FindPlugins(m_root->filePath(place), error).isEmpty());
    QCOMPARE(error, sentence.arg(m_root->filePath(place)));
}

QTEST_GUILESS_MAIN(tst_PluginPlaces)
#include "tst_PluginPlaces.moc"
