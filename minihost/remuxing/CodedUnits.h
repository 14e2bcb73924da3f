#pragma once

#include <QByteArray>
#include <QVector>
#include <optional>

#include "H264Syntax.h"

/// One unit of a frame with start codes (ITU-T H.264, 7.3.1 and annex B).
struct SxCodedUnit
{
    static constexpr int kSlice = 1; // nal_unit_type
    static constexpr int kIdrSlice = 5;
    static constexpr int kSps = 7;
    static constexpr int kPps = 8;

    int begin = 0;    ///< bytes from the start of the frame, of its start code
    int end = 0;      ///< where the next begins
    QByteArray bytes; ///< from its header byte on, without zeros behind it

    int type() const { return bytes.isEmpty() ? 0 : bytes[0] & 0x1F; }
    bool isSlice() const { return type() >= kSlice && type() <= kIdrSlice; }
};

/// The units of a frame, in order. They lie back to back; what comes before the first belongs to none.
QVector<SxCodedUnit> fx_UnitsOf(QByteArray const& frame);

/// What the first sequence parameter set of a frame says; nothing when there is none, or it makes no sense.
std::optional<SxH264Sps> fx_SpsOf(QByteArray const& frame);

/// What the header of a slice says; nothing when the unit is none, or it makes no sense.
std::optional<SxH264Slice> fx_SliceOf(SxCodedUnit const& unit, SxH264Sps const& sps);

/// A unit with the longer of the two start codes before it, which sets of parameters need.
QByteArray fx_WithStartCode(QByteArray const& unit);

/// The bits of a unit's payload, one a byte, without what keeps start codes out of it (7.4.1) and without the
/// stop bit and what follows (7.3.2.11).
QByteArray fx_PayloadBits(QByteArray const& unit);

/// The unit of that header byte and those bits.
QByteArray fx_UnitOf(char header, QByteArray const& bits);

/// The Exp-Golomb number (9.1) at \p at, which then moves behind it; nothing when there is none.
std::optional<quint32> fx_TakeNumber(QByteArray const& bits, int& at);

QByteArray fx_NumberBits(quint32 number); ///< the same as bits
