#pragma once

#include <QString>
#include <cmath>
#include <optional>

/// Pictures a second of everything that carries no rate of its own: the encoder counts on it, players assume
/// it for raw streams, and sources without a clock deliver at it. The plug-in has a copy: it includes
/// nothing from here.
constexpr int kPicturesASecond = 30;

/// Pictures a second as the fraction that video formats write, so that 30000/1001 stays what it is.
struct SxPictureRate
{
    int numerator = 0; ///< 0: unknown
    int denominator = 1;
    bool isAverage = false; ///< the pictures come at no steady rate

    bool isKnown() const { return numerator > 0; }
    double perSecond() const { return static_cast<double>(numerator) / denominator; }
    /// Whether players that assume a rate show it at the right speed.
    bool isAsAssumed() const { return std::abs(orAssumed() - kPicturesASecond) < 0.001; }
    double orAssumed() const { return isKnown() ? perSecond() : kPicturesASecond; }

    QString text() const;      ///< for people, "29.97"
    QString exact() const;     ///< for fx_RateFromText(), "30000/1001"
    QString described() const; ///< "29.97 pictures a second", "30 pictures a second (assumed)" when unknown
};

/// True for what a camera or a person's patience can deliver: a picture in a quarter of an hour to 100000 a
/// second.
bool fx_IsSane(SxPictureRate const& rate);

/// "25", "29.97" or "30000/1001"; nothing when it is neither, or not sane.
std::optional<SxPictureRate> fx_RateFromText(QString const& text);
