#include "PluginFault.h"

#include <QtTest>

/// What Qt and the linker say of a library that does not load, in words for people. The texts are those of
/// Qt 5.15 and 6.4; tst_PluginsCommand has what can be made anywhere.
class tst_PluginFault : public QObject
{
    Q_OBJECT

private slots:
    void faultIsToldInWordsForPeople_data();
    void faultIsToldInWordsForPeople();
};

void tst_PluginFault::faultIsToldInWordsForPeople_data()
{
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("told");
    QTest::newRow("library")
        << "Cannot load library /x/libtvpA.so: (libopenh264.so.7: cannot open shared object "
           "file: No such file or directory)"
        << "the library libopenh264.so.7, which it needs, is not there";
    QTest::newRow("symbol in C")
        << "Cannot load library /x/libtvpA.so: (/x/libtvpA.so: undefined symbol: "
           "WelsCreateDecoder, version OPENH264_7)"
        << "it needs WelsCreateDecoder, which neither this host nor a library provides";
    QTest::newRow("Qt 5") << "The plugin '/x/libtvpA.so' uses incompatible Qt library. (5.14.0) [release]"
                          << QStringLiteral(
                                 "it is built with Qt 5.14.0, which does not go with this program's %1")
                                 .arg(qVersion());
    QTest::newRow("half, Qt 6")
        << "Failed to extract plugin meta data from '/x/libtvpA.so': '/x/libtvpA.so' is not "
           "a valid ELF object (file too small)"
        << "the file is no shared library, or not a whole one";
    QTest::newRow("anything else") << "Something new"
                                   << "Something new";
}

void tst_PluginFault::faultIsToldInWordsForPeople()
{
    QFETCH(QString, error);
    QTEST(fx_WhyNotLoaded(QCoreApplication::applicationFilePath(), error), "told");
}

QTEST_GUILESS_MAIN(tst_PluginFault)
#include "tst_PluginFault.moc"
