#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include "support/FileBytes.h"
#include "support/Minihost.h"

/// The plugins command as its user meets it: the built program, the plug-in and some that do not load.
class tst_PluginsCommand : public QObject
{
    Q_OBJECT

private slots:
    void pluginIsToldWithWhatItProvides();
    void jsonHoldsTheSame();
    void licenceIsShownAsItIsWritten();
    void pluginThatDoesNotLoadIsToldInOneLine_data();
    void pluginThatDoesNotLoadIsToldInOneLine();
    void goodPluginIsToldBesideBadOne();
    void debugAndReleaseTogetherAreWarnedOf();
    void fileIsNoArgument();
};

static SxMinihostRun fx_RunPlugins(QString const& place, QStringList const& options = {})
{
    return fx_RunMinihost(QStringList{"plugins", "--plugin-path", place} + options);
}

void tst_PluginsCommand::pluginIsToldWithWhatItProvides()
{
    SxMinihostRun const run = fx_RunPlugins(PLUGIN_FILE);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY2(run.out.startsWith(PLUGIN_FILE ": com.quarn.CxPluginCodecOpenH264\n"
                                            "  OpenH264 Codecs 1.0.0, QUARN GmbH, http://www.quarn.com\n"
                                            "  This plugin implements:\n"
                                            "  - the H.264 video codecs"),
             run.out);
    QVERIFY2(run.out.endsWith("\n  IxVideoEncoder     CxOpenH264Encoder  H.264 Video Encoder\n"
                              "  IxVideoDecoder     CxOpenH264Decoder  H.264 Video Decoder\n"
                              "  IxImageDataSaver   CxH264VideoSaver   H.264 Video Saver (*.264)\n"
                              "  IxImageDataLoader  CxH264VideoLoader  H.264 Video Loader (*.264)\n"),
             run.out);
}

void tst_PluginsCommand::jsonHoldsTheSame()
{
    QJsonObject const json = fx_RunPlugins(PLUGIN_FILE, {"--json"}).json();
    QCOMPARE(json.value("failures").toArray().size(), 0);
    QJsonObject const plugin = json.value("plugins").toArray().at(0).toObject();
    QCOMPARE(plugin.value("file").toString(), QString(PLUGIN_FILE));
    QCOMPARE(plugin.value("iid").toString(), QString("com.quarn.CxPluginCodecOpenH264"));
    QCOMPARE(plugin.value("name").toString(), QString("OpenH264 Codecs"));
    QCOMPARE(plugin.value("author").toString(), QString("QUARN GmbH"));
    QCOMPARE(plugin.value("version").toString(), QString("1.0.0"));
    QVERIFY(plugin.value("description").toString().startsWith("This plugin implements:\n"));
    QVERIFY(!plugin.contains("licence"));
    QCOMPARE(plugin.value("classes").toArray().size(), 4);
    QCOMPARE(plugin.value("classes").toArray().at(2).toObject(),
             (QJsonObject{{"class", "CxH264VideoSaver"},
                          {"interface", "IxImageDataSaver"},
                          {"customName", "H.264 Video Saver (*.264)"}}));
}

void tst_PluginsCommand::licenceIsShownAsItIsWritten()
{
    QByteArray const notice = fx_FileBytes(NOTICE_FILE);
    QVERIFY(notice.contains("Copyright \xC2\xA9 2014 Cisco")); // not all of it is ASCII
    SxMinihostRun const text = fx_RunPlugins(PLUGIN_FILE, {"--licence"});
    QVERIFY2(text.out.contains(notice.trimmed()), text.out);
    QJsonObject const json = fx_RunPlugins(PLUGIN_FILE, {"--licence", "--json"}).json();
    QCOMPARE(json.value("plugins").toArray().at(0).toObject().value("licence").toString().toUtf8(), notice);
}

void tst_PluginsCommand::pluginThatDoesNotLoadIsToldInOneLine_data()
{
    QTest::addColumn<QByteArray>("bytes"); // empty: the file is there already
    QTest::addColumn<QString>("file");     // in a folder of the test, unless it is there
    QTest::addColumn<QString>("cause");
    QByteArray const plugin = fx_FileBytes(PLUGIN_FILE);
    QString const broken = "the plug-in cannot be loaded: the file is no shared library, or not a whole one.";
    QTest::newRow("text") << QByteArray("a text") << "text.so" << broken;
    QTest::newRow("cut off in the header") << plugin.left(100) << "cut.so" << broken;
    QTest::newRow("cut off in the middle") << plugin.left(plugin.size() / 2) << "half.so" << broken;
    QTest::newRow("no plug-in") << QByteArray() << CORE_LIBRARY
                                << "the plug-in cannot be loaded: it is a library, but no Qt plug-in.";
    QTest::newRow("other host") << QByteArray() << OTHER_PLUGIN
                                << "the library is a Qt plug-in, but none for this host: its IID is "
                                   "org.example.CxOtherPlugin.";
    QTest::newRow("no will to work") << QByteArray() << REFUSING_PLUGIN << "the plug-in refused to start.";
    QTest::newRow("missing symbol")
        << QByteArray() << NEEDY_PLUGIN
        << "the plug-in cannot be loaded: it needs CxOtherHost::start(int), which "
           "neither this host nor a library provides.";
}

void tst_PluginsCommand::pluginThatDoesNotLoadIsToldInOneLine()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, file);
    QFETCH(QString, cause);
    QTemporaryDir folder;
    if (!bytes.isEmpty()) {
        file = folder.filePath(file);
        QVERIFY(fx_WriteFile(file, bytes));
    }
    SxMinihostRun const run = fx_RunPlugins(file);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(QString::fromUtf8(run.err), QStringLiteral("error: %1: %2\n").arg(file, cause));
}

void tst_PluginsCommand::goodPluginIsToldBesideBadOne()
{
    QTemporaryDir folder;
    QVERIFY(QFile::link(PLUGIN_FILE, folder.filePath("libtvpGood.so")));
    QVERIFY(QFile::link(OTHER_PLUGIN, folder.filePath("libtvpBad.so")));
    SxMinihostRun const run = fx_RunPlugins(folder.path(), {"--json"});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.err.count('\n'), 1);
    QJsonArray const failures = run.json().value("failures").toArray();
    QCOMPARE(failures.size(), 1);
    QCOMPARE(failures.at(0).toObject().value("file").toString(), folder.filePath("libtvpBad.so"));
    QVERIFY(failures.at(0).toObject().value("error").toString().contains("none for this host"));
    QCOMPARE(run.json().value("plugins").toArray().size(), 1);
}

void tst_PluginsCommand::debugAndReleaseTogetherAreWarnedOf()
{
    SxMinihostRun const run = fx_RunPlugins(MIXED_PLUGIN);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains("IxVideoDecoder     CxOneGreyDecoder   One Grey Video Decoder\n"), run.out);
    QVERIFY2(run.err.startsWith("warning: " MIXED_PLUGIN " is a "), run.err);
    QVERIFY2(run.err.contains("debug build") && run.err.contains("release build"), run.err);
    QCOMPARE(run.err.count('\n'), 1);
}

void tst_PluginsCommand::fileIsNoArgument()
{
    SxMinihostRun const run = fx_RunMinihost({"plugins", "libtvpX.so"});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.err,
             QByteArray("error: 'libtvpX.so': --plugin-path says where to look. See minihost plugins "
                        "--help.\n"));
}

QTEST_GUILESS_MAIN(tst_PluginsCommand)
#include "tst_PluginsCommand.moc"
