#include "EncoderOptions.h"

#include <algorithm>
#include <iterator>

namespace {

struct SxKey
{
    char const* name;
    int SxEncoderOptions::*option;
};

SxKey const kKeys[] = {{"h264_quality", &SxEncoderOptions::quality},
                       {"h264_keyframerate", &SxEncoderOptions::keyFrameInterval},
                       {"h264_complexity", &SxEncoderOptions::complexity},
                       {"h264_profile_idc", &SxEncoderOptions::profile},
                       {"h264_level_idc", &SxEncoderOptions::level}};

struct SxNamed
{
    char const* name;
    int number;
};

SxNamed const kComplexities[] = {{"low", 0}, {"medium", 1}, {"high", 2}};

// profile_idc (ITU-T H.264, Annex A.2)
SxNamed const kProfiles[] = {{"baseline", 66}, {"main", 77}, {"extended", 88}, {"high", 100}};

// level_idc (ITU-T H.264, Annex A.3); OpenH264 has a number of its own for level 1b
SxNamed const kLevels[] = {{"1", 10},   {"1b", 9},   {"1.1", 11}, {"1.2", 12}, {"1.3", 13}, {"2", 20},
                           {"2.1", 21}, {"2.2", 22}, {"3", 30},   {"3.1", 31}, {"3.2", 32}, {"4", 40},
                           {"4.1", 41}, {"4.2", 42}, {"5", 50},   {"5.1", 51}, {"5.2", 52}};

template<size_t count>
QStringList fx_Names(SxNamed const (&table)[count])
{
    QStringList names;
    for (SxNamed const& entry : table)
        names += QString::fromLatin1(entry.name);
    return names;
}

template<size_t count>
QString fx_NameOf(SxNamed const (&table)[count], int number)
{
    auto const found = std::find_if(std::begin(table), std::end(table),
                                    [number](SxNamed const& entry) { return entry.number == number; });
    return found == std::end(table) ? QString::number(number) : QString::fromLatin1(found->name);
}

template<size_t count>
std::optional<int> fx_Number(SxNamed const (&table)[count], QString const& name)
{
    auto const found = std::find_if(std::begin(table), std::end(table), [&name](SxNamed const& entry) {
        return name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0;
    });
    if (found == std::end(table))
        return std::nullopt;
    return found->number;
}

} // namespace

QMap<QString, QVariant> SxEncoderOptions::toMap() const
{
    QMap<QString, QVariant> map;
    for (SxKey const& key : kKeys)
        map.insert(QString::fromLatin1(key.name), this->*key.option);
    return map;
}

SxEncoderOptions SxEncoderOptions::fromMap(QMap<QString, QVariant> const& map)
{
    SxEncoderOptions options;
    for (SxKey const& key : kKeys)
        options.*key.option = map.value(QString::fromLatin1(key.name), options.*key.option).toInt();
    return options;
}

QStringList fx_ComplexityNames() { return fx_Names(kComplexities); }

QStringList fx_ProfileNames() { return fx_Names(kProfiles); }

QStringList fx_LevelNames() { return fx_Names(kLevels); }

std::optional<int> fx_ComplexityFromName(QString const& name) { return fx_Number(kComplexities, name); }

std::optional<int> fx_ProfileFromName(QString const& name) { return fx_Number(kProfiles, name); }

std::optional<int> fx_LevelFromName(QString const& name)
{
    // "4.0" is as common as "4".
    return fx_Number(kLevels, name.endsWith(QLatin1String(".0")) ? name.chopped(2) : name);
}

QString fx_ProfileName(int profile) { return fx_NameOf(kProfiles, profile); }

QString fx_LevelName(int level) { return fx_NameOf(kLevels, level); }
