#include <QtTest>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "support/FakeEncoder.h"
#include "tarnCore.h"

class tst_ClassRegistry : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void keepsOrderAndRefusesTwice();
    void forgetsAPlugin();

private:
    CxFakePlugin m_plugin;
};

void tst_ClassRegistry::cleanup()
{
    fx_UnregisterClasses(&m_plugin);
    fx_SetCodecOptions(kH264, {});
    QCOMPARE(s_liveEncoders, 0);
}

void tst_ClassRegistry::keepsOrderAndRefusesTwice()
{
    CxRTTI* const registry = CxRTTI::instance();
    QVERIFY(registry);
    QCOMPARE(CxRTTI::instance(), registry);
    QVERIFY(registry->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder"));
    QVERIFY(registry->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxImageDataSaver"));
    QVERIFY(registry->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder"));
    QVERIFY(!registry->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxImageDataSaver"));

    QList<SxRegisteredClass> const all = fx_RegisteredClasses();
    QCOMPARE(all.size(), 3);
    QCOMPARE(all[0].metaObject, &CxFakeMjpgEncoder::staticMetaObject);
    QCOMPARE(all[1].metaObject, &CxNoEncoder::staticMetaObject);
    QCOMPARE(all[2].metaObject, &CxFakeEncoder::staticMetaObject);
    QCOMPARE(all[1].plugin, static_cast<CxPlugin*>(&m_plugin));
    QCOMPARE(all[1].interfaceName, QStringLiteral("IxImageDataSaver"));

    QList<SxRegisteredClass> const encoders = fx_RegisteredClasses("IxVideoEncoder");
    QCOMPARE(encoders.size(), 2);
    QCOMPARE(encoders[0].metaObject, &CxFakeMjpgEncoder::staticMetaObject);
    QCOMPARE(encoders[1].metaObject, &CxFakeEncoder::staticMetaObject);
    QVERIFY(fx_RegisteredClasses("IxVideoDecoder").isEmpty());
}

void tst_ClassRegistry::forgetsAPlugin()
{
    CxFakePlugin other;
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&other, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    fx_UnregisterClasses(&other);
    QCOMPARE(fx_RegisteredClasses().size(), 1);
    QVERIFY(!CxVideoCodecManager::instance()->encoderForFourCC(kMjpg));
    // A plug-in loaded again may register again.
    QVERIFY(CxRTTI::instance()->registerClass(&other, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder"));
    fx_UnregisterClasses(&other);
}

QTEST_APPLESS_MAIN(tst_ClassRegistry)
#include "tst_ClassRegistry.moc"
