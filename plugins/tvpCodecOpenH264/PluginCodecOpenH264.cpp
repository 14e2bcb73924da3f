#include "PluginCodecOpenH264.h"

#include "CxRTTI.h"
#include "H264VideoLoader.h"
#include "H264VideoSaver.h"
#include "OpenH264Licence.h"
#include "openH264Decoder.h"
#include "openH264Encoder.h"
#include "tarnCoreVersion.h"

bool CxPluginCodecOpenH264::init()
{
    // Names on the heap: the registry may outlive this library.
    CxRTTI* const registry = CxRTTI::instance();
    registry->registerClass(this, CxOpenH264Encoder::staticMetaObject, QLatin1String("IxVideoEncoder"));
    registry->registerClass(this, CxOpenH264Decoder::staticMetaObject, QLatin1String("IxVideoDecoder"));
    registry->registerClass(this, CxH264VideoSaver::staticMetaObject, QLatin1String("IxImageDataSaver"));
    registry->registerClass(this, CxH264VideoLoader::staticMetaObject, QLatin1String("IxImageDataLoader"));
    return true;
}

QString CxPluginCodecOpenH264::copyrightNotice() const
{
    // Deliberate: byte by byte, so that the host shows exactly the published file.
    return QString::fromLatin1(kOpenH264Licence, kOpenH264LicenceSize);
}

QString CxPluginCodecOpenH264::name() const { return tr("OpenH264 Codecs"); }

QString CxPluginCodecOpenH264::author() const { return QStringLiteral("QUARN GmbH"); }

QString CxPluginCodecOpenH264::description() const
{
    return QStringLiteral("This plugin implements:\n"
                          "- the H.264 video codecs using the OpenH264 library (http://www.openh264.org) "
                          "by Cisco Systems, Inc.,\n"
                          "- the video loader/saver for the \"raw\" H.264 video format "
                          "(file extension *.264).");
}

void CxPluginCodecOpenH264::version(int& major, int& minor, int& build) const
{
    tarnCoreVersion(major, minor, build);
}

QString CxPluginCodecOpenH264::website() const { return QStringLiteral("http://www.quarn.com"); }
