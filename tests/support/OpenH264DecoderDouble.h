#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <wels/codec_api.h>

/// When the double gives a slice's picture out.
enum class Delivery {
    AtUnit,      ///< with the slice itself
    AtEmptyCall, ///< with the empty call behind it, as OpenH264 does for Baseline
    AtFlush,     ///< held back until FlushFrame(), as OpenH264 does for Main and High
    Never
};

/// A recording stand-in for OpenH264's decoder. The program must be linked with
/// -Wl,--wrap=WelsCreateDecoder,--wrap=WelsDestroyDecoder.
///
/// A unit of type 1 or 5 makes a grey picture whose luma is the byte behind its header byte, so that a
/// test sees whose picture it got. A payload of three bytes gives its size behind it, in units of 16.
struct SxOpenH264DecoderDouble
{
    // The script
    long createError = 0;
    bool givesHandle = true; ///< also when creation fails
    long initError = 0;
    Delivery delivery = Delivery::AtEmptyCall;
    int width = 16;
    int height = 16;
    int stridePadding = 0;     ///< bytes behind each row, of value 77
    int unitError = 0;         ///< result of the unit whose first byte behind the header is errorAt
    int emptyError = 0;        ///< of the empty call behind that unit
    int flushError = 0;        ///< of every FlushFrame()
    int errorAt = -1;          ///< -1: no unit
    bool isFlushStuck = false; ///< FlushFrame() gives nothing, however much is held

    // The record
    int created = 0; ///< handles given
    int destroyed = 0;
    int initialised = 0;
    int uninitialised = 0;
    int otherCalls = 0;            ///< of operations and options that the plug-in has no use for
    bool isParamZeroBeside = true; ///< nothing but the expected fields was set in the last one
    SDecodingParam param = {};     ///< the last one
    bool areOutputsCleared = true; ///< plane pointers and buffer info came in zero at every call
    QList<QByteArray> units;       ///< as they came, start codes included
    QStringList calls;             ///< "unit 65", "empty", "held?", "flush", "end", "destroy", in order
};

/// The one double. Assign a fresh one to forget everything; no decoder may live then.
SxOpenH264DecoderDouble& fx_OpenH264DecoderDouble();
