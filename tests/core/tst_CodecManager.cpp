#include <QtTest>
#include <memory>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "support/FakeEncoder.h"
#include "tarnCore.h"

class tst_CodecManager : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void findsTheEncoderOfAFourCC();
    void encoderCarriesItsOptions();
    void passesOverAnObjectThatIsNoEncoder();

private:
    CxFakePlugin m_plugin;
};

void tst_CodecManager::cleanup()
{
    fx_UnregisterClasses(&m_plugin);
    fx_SetCodecOptions(kH264, {});
    QCOMPARE(s_liveEncoders, 0);
}

void tst_CodecManager::findsTheEncoderOfAFourCC()
{
    CxVideoCodecManager* const manager = CxVideoCodecManager::instance();
    QVERIFY(manager);
    QVERIFY(!manager->encoderForFourCC(kH264)); // nobody registered yet

    CxRTTI::instance()->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    std::unique_ptr<IxVideoEncoder> const first(manager->encoderForFourCC(kH264));
    std::unique_ptr<IxVideoEncoder> const second(manager->encoderForFourCC(kH264));
    std::unique_ptr<IxVideoEncoder> const other(manager->encoderForFourCC(kMjpg));
    QVERIFY(first && second && other);
    QVERIFY(first != second);
    QCOMPARE(first->fourCC(), kH264);
    QCOMPARE(other->fourCC(), kMjpg);
    QCOMPARE(s_liveEncoders, 3); // those tried and not taken are gone

    QVERIFY(!manager->encoderForFourCC(0));
    QCOMPARE(s_liveEncoders, 3);
}

void tst_CodecManager::encoderCarriesItsOptions()
{
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    CxVideoCodecManager* const manager = CxVideoCodecManager::instance();

    std::unique_ptr<IxVideoEncoder> encoder(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_settings, 0); // the encoder's own defaults stay

    QMap<QString, QVariant> const options{{"h264_quality", 9}, {"h264_level_idc", 41}};
    fx_SetCodecOptions(kH264, options);
    QCOMPARE(fx_CodecOptions(kH264), options);
    QVERIFY(fx_CodecOptions(kMjpg).isEmpty());
    encoder.reset(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_options, options);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_settings, 1);

    std::unique_ptr<IxVideoEncoder> const other(manager->encoderForFourCC(kMjpg));
    QVERIFY(other);
    QCOMPARE(static_cast<CxFakeEncoder*>(other.get())->m_settings, 0);

    fx_SetCodecOptions(kH264, {{"h264_quality", 1}}); // replaces, does not merge
    encoder.reset(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_options.size(), 1);
}

void tst_CodecManager::passesOverAnObjectThatIsNoEncoder()
{
    CxRTTI::instance()->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxVideoEncoder");
    QVERIFY(!CxVideoCodecManager::instance()->encoderForFourCC(kH264));
    // One that cannot be created: QThread's constructor is not invokable.
    CxRTTI::instance()->registerClass(&m_plugin, QThread::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    std::unique_ptr<IxVideoEncoder> const encoder(CxVideoCodecManager::instance()->encoderForFourCC(kH264));
    QVERIFY(encoder);
}

QTEST_APPLESS_MAIN(tst_CodecManager)
#include "tst_CodecManager.moc"
