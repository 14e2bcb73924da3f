#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

/// What a user may choose for the H.264 encoder, checked here because the encoder checks nothing.
/// Defaults, ranges, names and keys are copies of the plug-in's: nothing passes the border between it and a
/// host but the map.
struct SxEncoderOptions
{
    int quality = 5; ///< kQualityMin to kQualityMax; more bits a second with each step
    int keyFrameInterval =
        5; ///< pictures from one key frame to the next, kKeyFrameIntervalMin to kKeyFrameIntervalMax
    int complexity = 1; ///< 0 low, 1 medium, 2 high
    int profile = 66;   ///< profile_idc
    int level = 52;     ///< level_idc; 9 stands for level 1b

    static constexpr int kQualityMin = 1;
    static constexpr int kQualityMax = 10;
    static constexpr int kKeyFrameIntervalMin = 1;
    static constexpr int kKeyFrameIntervalMax = 100;

    /// The options under the keys that the encoder reads.
    QMap<QString, QVariant> toMap() const;

    /// Back from there; what \p map lacks keeps its default.
    static SxEncoderOptions fromMap(QMap<QString, QVariant> const& map);
};

/// FourCC of H.264, the "H" in the lowest byte: under this code the host keeps the encoder's options.
constexpr unsigned int kFourCCH264 = 0x34363248;

/// Names as a person writes them, in the order in which a list shows them.
QStringList fx_ComplexityNames();
QStringList fx_ProfileNames();
QStringList fx_LevelNames();

/// The encoder's number for a name; case does not matter. Nothing when there is no such name.
std::optional<int> fx_ComplexityFromName(QString const& name);
std::optional<int> fx_ProfileFromName(QString const& name);
std::optional<int> fx_LevelFromName(QString const& name);

/// The name for a number, or the number itself.
QString fx_ProfileName(int profile);
QString fx_LevelName(int level);
