#pragma once

#include <QMap>
#include <QString>
#include <QVariant>
#include <QVariantList>

#include "FuzzInput.h"
#include "openH264Options.h"

/// A value as a host may keep it: of the right type and range, of the right type, or of any other.
inline QVariant fx_RandomVariant(CxFuzzInput& input)
{
    switch (input.byte() % 16) {
    case 0:
        return QVariant();
    case 1:
        return static_cast<int>(input.word());
    case 2:
        return input.word();
    case 3:
        return static_cast<qlonglong>(quint64(input.word()) << 32 | input.word());
    case 4:
        return static_cast<double>(static_cast<int>(input.word())) * 1e3;
    case 5:
        return input.flag();
    case 6:
        return QString::number(static_cast<std::int8_t>(input.byte()));
    case 7:
        return QStringLiteral("no number");
    case 8:
        return QByteArray("7");
    case 9:
        return QVariantList{1, 2};
    default:
        return static_cast<int>(static_cast<std::int8_t>(input.byte()));
    }
}

/// Some of the encoder's options, and one that it does not know.
inline QMap<QString, QVariant> fx_RandomOptions(CxFuzzInput& input)
{
    static char const* const kKeys[] = {kQualityKey, kKeyFrameRateKey, kComplexityKey, kProfileKey,
                                        kLevelKey,   kShowAdvancedKey, "h264_other"};
    static int const kLevels[] = {9, 10, 11, 13, 20, 21, 30, 31, 40, 42, 50, 52};
    static int const kProfiles[] = {66, 77, 88, 100, 110, 122, 144, 244};
    QMap<QString, QVariant> options;
    std::uint8_t const chosen = input.byte();
    for (unsigned i = 0; i < 7; ++i) {
        if ((chosen >> i & 1) == 0)
            continue;
        QString const key = QLatin1String(kKeys[i]);
        bool const isUsual = input.byte() % 4 != 0;
        if (isUsual && key == QLatin1String(kLevelKey))
            options.insert(key, kLevels[input.byte() % 12]);
        else if (isUsual && key == QLatin1String(kProfileKey))
            options.insert(key, kProfiles[input.byte() % 8]);
        else if (isUsual)
            options.insert(key, input.byte() % 11);
        else
            options.insert(key, fx_RandomVariant(input));
    }
    return options;
}
