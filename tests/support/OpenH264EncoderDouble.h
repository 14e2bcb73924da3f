#pragma once

#include <string>
#include <vector>
#include <wels/codec_api.h>

#include "support/ConversionOracle.h"

/// What the double answers to one EncodeFrame().
struct SxEncodeAnswer
{
    int error = 0;
    EVideoFrameType type = videoFrameTypeP;
    std::vector<std::vector<std::string>> layers; ///< NAL units of each layer
    int layerCount = -2;                          ///< iLayerNum; -2: as many as layers
    int emptyNalCount = 0;                        ///< iNalCount of a layer without units
};

/// One picture as it reached EncodeFrame().
struct SxEncodedPicture
{
    SSourcePicture header;
    SxPlanes planes;           ///< what the header's pointers, strides and sizes show
    bool isForced = false;     ///< ForceIntraFrame(true, -1) came since the picture before
    bool isRecordZero = false; ///< the frame record came in filled with zero bytes
};

/// A recording stand-in for OpenH264's encoder. The program must be linked with
/// -Wl,--wrap=WelsCreateSVCEncoder,--wrap=WelsDestroySVCEncoder.
///
/// Without a script every encoder can be created and initialised and codes each picture as one layer
/// of one NAL unit: IDR when forced, else P. With `forwards` the calls go on to the real library, but for
/// pictures whose answer is an error.
struct SxOpenH264Double
{
    // The script
    bool forwards = false;
    int createError = 0;
    bool givesHandle = true; ///< also when creation fails
    int initError = 0;
    std::vector<SxEncodeAnswer> answers; ///< to the next pictures; afterwards as without a script

    // The record
    int created = 0; ///< handles given
    int destroyed = 0;
    int uninitialized = 0;
    int otherCalls = 0;               ///< of operations that the plug-in has no use for, and odd arguments
    std::vector<SEncParamExt> params; ///< one for each InitializeExt(), byte by byte
    std::vector<SxEncodedPicture> pictures;

    std::vector<int> forcedPictures() const; ///< numbers of the pictures that were forced
};

/// The one double. Assign a fresh one to forget everything; no encoder may live then.
SxOpenH264Double& fx_OpenH264Double();

/// What the double's GetDefaultParams() gives: values that no one else would choose.
SEncParamExt fx_DoubleDefaultParams();
