#include <QObject>

#include <memory>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxVideoCodecManager.h"
#include "IxVideoEncoder.h"

static QMap<unsigned int, QMap<QString, QVariant>>& fx_OptionsByFourCC()
{
    static QMap<unsigned int, QMap<QString, QVariant>> options;
    return options;
}

void fx_SetCodecOptions(unsigned int fourCC, QMap<QString, QVariant> const& options)
{
    fx_OptionsByFourCC().insert(fourCC, options);
}

QMap<QString, QVariant> fx_CodecOptions(unsigned int fourCC) { return fx_OptionsByFourCC().value(fourCC); }

CxVideoCodecManager* CxVideoCodecManager::instance()
{
    static CxVideoCodecManager manager;
    return &manager;
}

IxVideoEncoder* CxVideoCodecManager::encoderForFourCC(unsigned int fourCC)
{
    // A class does not say which code it has, only its objects do.
    char const* const interfaceName = "IxVideoEncoder";
    for (SxRegisteredClass const& known : fx_RegisteredClasses(QLatin1String(interfaceName))) {
        std::unique_ptr<QObject> object(known.metaObject->newInstance());
        if (!object)
            continue;
        auto* const encoder = static_cast<IxVideoEncoder*>(object->qt_metacast(interfaceName));
        if (!encoder || encoder->fourCC() != fourCC)
            continue;

        QMap<QString, QVariant> const options = fx_CodecOptions(fourCC);
        if (!options.isEmpty())
            encoder->setEncoderOptions(options);
        static_cast<void>(object.release()); // the caller deletes it through the interface
        return encoder;
    }
    return nullptr;
}
