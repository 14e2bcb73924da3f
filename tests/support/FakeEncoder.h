#pragma once

#include "CxPlugin.h"
#include "IxVideoEncoder.h"

constexpr unsigned int kH264 = 0x34363248;
constexpr unsigned int kMjpg = 0x47504A4D;

/// Encoders of the test's plug-in that live at the moment.
extern int s_liveEncoders;

/// An encoder that codes nothing and remembers the options it was given.
class CxFakeEncoder : public QObject, public IxVideoEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxFakeEncoder() { ++s_liveEncoders; }
    ~CxFakeEncoder() override { --s_liveEncoders; }

    QString name() override { return QStringLiteral("fake"); }
    unsigned int fourCC() override { return kH264; }
    bool encode(SxPicBuf const&, void*, unsigned long&, bool*) override { return false; }
    unsigned long maxEncodedSize(SxPicBufInfo const&) override { return 0; }
    void queryOuputFormat(SxPicBufInfo const&, SxPicBufInfo&) override {}
    void setEncoderOptions(QMap<QString, QVariant> const& options) override
    {
        m_options = options;
        ++m_settings;
    }
    QWidget* widgetForSaveDlg(QWidget*) override { return nullptr; }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override { return m_options; }

    QMap<QString, QVariant> m_options;
    int m_settings = 0;
};

/// The same for another code.
class CxFakeMjpgEncoder : public CxFakeEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxFakeMjpgEncoder() {}
    unsigned int fourCC() override { return kMjpg; }
};

/// Registered as an encoder and none.
class CxNoEncoder : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE CxNoEncoder() {}
};

class CxFakePlugin : public CxPlugin
{};
