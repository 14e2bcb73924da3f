#include <QtTest>

#include <memory>

#include "ClassRegistry.h"
#include "CxPlugin.h"
#include "CxRTTI.h"
#include "tarnCoreVersion.h"

/// The plug-in as the host meets it: the built file, loaded through Qt's plug-in loader.
class tst_PluginCodecOpenH264 : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void metaDataNamesTheInterface();
    void thereIsOneInstance();
    void newInstanceAfterDeletion();
    void castsToItsInterfaces();
    void metaObjectIsThatOfTheClass();
    void saysWhatItIs();
    void licenceNoticeIsThePublishedOne();
    void versionIsThatOfTheProject();
    void registersItsClasses();
    void createsRegisteredClasses();
    void exportsOnlyEntryPoints();
    void needsOnlyAllowedLibraries();

private:
    CxPlugin* plugin() { return qobject_cast<CxPlugin*>(m_loader.instance()); }

    QPluginLoader m_loader{QStringLiteral(PLUGIN_FILE)};
};

void tst_PluginCodecOpenH264::initTestCase()
{
    QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
    QVERIFY(plugin());
}

void tst_PluginCodecOpenH264::metaDataNamesTheInterface()
{
    QJsonObject const data = m_loader.metaData();
    QCOMPARE(data["IID"].toString(), QStringLiteral("com.quarn.CxPluginCodecOpenH264"));
    QCOMPARE(data["className"].toString(), QStringLiteral("CxPluginCodecOpenH264"));
    // Newer versions of Qt leave the empty object out and say something about the processor.
    QCOMPARE(data["MetaData"].toObject(), QJsonObject());
    QStringList const known = {"IID", "MetaData", "archlevel", "archreq", "className", "debug", "version"};
    for (QString const& key : data.keys())
        QVERIFY2(known.contains(key), qPrintable(key));
#ifdef QT_NO_DEBUG
    QCOMPARE(data["debug"], QJsonValue(false));
#else
    QCOMPARE(data["debug"], QJsonValue(true));
#endif
    // The Qt that it was built with; the patch level is not part of the comparison that Qt makes.
    QCOMPARE(data["version"].toInt() >> 8, QT_VERSION >> 8);
}

void tst_PluginCodecOpenH264::thereIsOneInstance()
{
    using Instance = QObject* (*)();
    auto const instance = reinterpret_cast<Instance>(QLibrary::resolve(PLUGIN_FILE, "qt_plugin_instance"));
    QVERIFY(instance);
    QObject* const object = instance();
    QVERIFY(object);
    QVERIFY(!object->parent());
    QCOMPARE(instance(), object);
    QCOMPARE(m_loader.instance(), object);
    QPluginLoader second(QStringLiteral(PLUGIN_FILE));
    QCOMPARE(second.instance(), object);
}

void tst_PluginCodecOpenH264::newInstanceAfterDeletion()
{
    QPointer<QObject> const object = m_loader.instance();
    delete object.data();
    QVERIFY(object.isNull());
    QObject* const next = m_loader.instance();
    QVERIFY(next);
    QCOMPARE(next->metaObject()->className(), "CxPluginCodecOpenH264");
    QCOMPARE(m_loader.instance(), next);
}

void tst_PluginCodecOpenH264::castsToItsInterfaces()
{
    QObject* const object = m_loader.instance();
    QVERIFY(object->qt_metacast("CxPlugin"));
    QCOMPARE(object->qt_metacast("CxPlugin"), static_cast<void*>(plugin()));
    QCOMPARE(object->qt_metacast("com.quarn.CxPlugin"), static_cast<void*>(plugin()));
    QCOMPARE(object->qt_metacast("CxPluginCodecOpenH264"), static_cast<void*>(object));
    QCOMPARE(object->qt_metacast("QObject"), static_cast<void*>(object));
    for (char const* const other : {"IxVideoEncoder", "IxVideoDecoder", "IxImageDataSaver",
                                    "IxImageDataLoader", "com.quarn.CxPluginCodecOpenH264", ""})
        QVERIFY2(!object->qt_metacast(other), other);
    QVERIFY(!object->qt_metacast(nullptr));
}

void tst_PluginCodecOpenH264::metaObjectIsThatOfTheClass()
{
    QMetaObject const* const meta = m_loader.instance()->metaObject();
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta->classInfoCount(), 0);
    QCOMPARE(meta->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(meta->propertyCount(), QObject::staticMetaObject.propertyCount());
}

void tst_PluginCodecOpenH264::saysWhatItIs()
{
    QCOMPARE(plugin()->name(), QStringLiteral("OpenH264 Codecs"));
    QCOMPARE(plugin()->author(), QStringLiteral("QUARN GmbH"));
    QCOMPARE(plugin()->website(), QStringLiteral("http://www.quarn.com"));
    QCOMPARE(plugin()->website().size(), 20);
    QCOMPARE(
        plugin()->description(),
        QStringLiteral("This plugin implements:\n"
                       "- the H.264 video codecs using the OpenH264 library (http://www.openh264.org) by "
                       "Cisco Systems, Inc.,\n"
                       "- the video loader/saver for the \"raw\" H.264 video format (file extension "
                       "*.264)."));
}

void tst_PluginCodecOpenH264::licenceNoticeIsThePublishedOne()
{
    QFile file(QStringLiteral(LICENCE_FILE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray const published = file.readAll();
    QCOMPARE(published.size(), 4595);
    QVERIFY(published.startsWith("OPENH264\n"));
    QVERIFY(published.endsWith("\n      v1.0\n"));
    QCOMPARE(QCryptographicHash::hash(published, QCryptographicHash::Sha256).toHex(),
             QByteArray("5c42ffccc76d89394265655a3fd599cf45be6e939a7a029175c063b0e84054d2"));

    // One character for each byte, also of the typographic quotes and the copyright sign.
    QString const notice = plugin()->copyrightNotice();
    QCOMPARE(notice.size(), 4595);
    QCOMPARE(notice.toLatin1(), published);
    QVERIFY(notice == QString::fromLatin1(published));
}

void tst_PluginCodecOpenH264::versionIsThatOfTheProject()
{
    int expected[3] = {-1, -1, -1};
    tarnCoreVersion(expected[0], expected[1], expected[2]);
    int actual[3] = {-2, -2, -2};
    plugin()->version(actual[0], actual[1], actual[2]);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(actual[i], expected[i]);
    QCOMPARE(
        plugin()->version(),
        QStringLiteral("%1.%2.%3").arg(expected[0]).arg(expected[1]).arg(expected[2])); // the host's body
}

static QByteArray fx_ClassInfo(QMetaObject const& meta, char const* key)
{
    int const index = meta.indexOfClassInfo(key);
    return index < 0 ? QByteArray() : QByteArray(meta.classInfo(index).value());
}

void tst_PluginCodecOpenH264::registersItsClasses()
{
    QVERIFY(fx_RegisteredClasses().isEmpty()); // nothing before init()
    QVERIFY(plugin()->init());
    QList<SxRegisteredClass> const classes = fx_RegisteredClasses();

    struct SxExpected
    {
        char const* interfaceName;
        char const* className;
        char const* customName;
    };
    SxExpected const expected[] = {
        {"IxVideoEncoder", "CxOpenH264Encoder", "H.264 Video Encoder"},
        {"IxVideoDecoder", "CxOpenH264Decoder", "H.264 Video Decoder"},
        {"IxImageDataSaver", "CxH264VideoSaver", "H.264 Video Saver (*.264)"},
        {"IxImageDataLoader", "CxH264VideoLoader", "H.264 Video Loader (*.264)"},
    };
    QCOMPARE(classes.size(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(classes[i].plugin, plugin());
        QCOMPARE(classes[i].interfaceName, QLatin1String(expected[i].interfaceName));
        QCOMPARE(classes[i].metaObject->className(), expected[i].className);
        QCOMPARE(fx_ClassInfo(*classes[i].metaObject, "CustomName"), QByteArray(expected[i].customName));
        QCOMPARE(classes[i].metaObject->superClass(), &QObject::staticMetaObject);
    }

    // The registry knows them all by now and says so; the result is of no concern.
    QVERIFY(plugin()->init());
    QCOMPARE(fx_RegisteredClasses().size(), 4);
}

void tst_PluginCodecOpenH264::createsRegisteredClasses()
{
    plugin()->init();
    QCOMPARE(fx_RegisteredClasses().size(), 4);
    for (SxRegisteredClass const& known : fx_RegisteredClasses()) {
        std::unique_ptr<QObject> const object(known.metaObject->newInstance());
        QVERIFY2(object, known.metaObject->className());
        QVERIFY(!object->parent());
        void* const interface = object->qt_metacast(qPrintable(known.interfaceName));
        QVERIFY2(interface, known.metaObject->className());
        QVERIFY(interface != object.get()); // QObject comes first
        QVERIFY(!object->qt_metacast("CxPlugin"));
        QVERIFY(!object->qt_metacast(nullptr));
    }
    fx_UnregisterClasses(plugin());
}

/// What readelf says about the plug-in: it reads the files of every processor.
static QString fx_ReadElf(char const* what)
{
    QProcess process;
    process.start(QStringLiteral("readelf"), {QLatin1String(what), "--wide", PLUGIN_FILE});
    bool const isDone = process.waitForFinished() && process.exitCode() == 0;
    return isDone ? QString::fromUtf8(process.readAllStandardOutput()) : QString();
}

void tst_PluginCodecOpenH264::exportsOnlyEntryPoints()
{
    QString const table = fx_ReadElf("--dyn-syms");
    QVERIFY2(!table.isEmpty(), "readelf (package binutils) is needed");
    QStringList names;
    for (QString const& line : table.split('\n')) {
        // number: value size type binding visibility section name
        QStringList const fields = line.simplified().split(' ');
        if (fields.size() < 8 || fields[4] == "LOCAL" || fields[6] == "UND" || fields[0] == "Num:")
            continue;
        names.append(fields[7].section('@', 0, 0));
    }
    names.sort();
    // moc of Qt 6.3 and later says in the name which form the metadata has.
    QCOMPARE(names, QStringList({"qt_plugin_instance", QT_VERSION < QT_VERSION_CHECK(6, 3, 0)
                                                           ? "qt_plugin_query_metadata"
                                                           : "qt_plugin_query_metadata_v2"}));
}

void tst_PluginCodecOpenH264::needsOnlyAllowedLibraries()
{
    QString const table = fx_ReadElf("--dynamic");
    QVERIFY2(!table.isEmpty(), "readelf (package binutils) is needed");
    QStringList needed;
    QRegularExpressionMatchIterator matches =
        QRegularExpression("\\(NEEDED\\)[^\\[]*\\[([^\\]]+)\\]").globalMatch(table);
    while (matches.hasNext())
        needed.append(matches.next().captured(1));
    QVERIFY(needed.contains("libtarnCore.so"));
    QVERIFY(!needed.filter(QRegularExpression("^libopenh264\\.so\\.[678]$")).isEmpty());

#ifdef __SANITIZE_ADDRESS__
    needed =
        needed.filter(QRegularExpression("^(?!lib(asan|ubsan)\\.so)")); // the runtime of this build's checks
#endif
    QRegularExpression const allowed(
        "^(libQt([56])(Core|Gui|Widgets)\\.so\\.\\2|libopenh264\\.so\\.[678]|libtarnCore\\.so|"
        "libstdc\\+\\+\\.so\\.6|libm\\.so\\.6|libgcc_s\\.so\\.1|libc\\.so\\.6|"
        "ld-linux.*\\.so\\.[12])$");
    for (QString const& library : needed)
        QVERIFY2(allowed.match(library).hasMatch(), qPrintable(library));
}

QTEST_GUILESS_MAIN(tst_PluginCodecOpenH264)
#include "tst_PluginCodecOpenH264.moc"
