#pragma once

#include "tarnCoreGlobal.h"

class IxVideoEncoder;

/// Hands out codecs by FourCC. One for the process; GUI thread only.
class TARNCORE_EXPORT CxVideoCodecManager
{
public:
    static CxVideoCodecManager* instance(); ///< never null

    /// A new encoder for streams of \p fourCC that carries the codec options the user chose, or
    /// null when no registered encoder has that code. The caller deletes it.
    IxVideoEncoder* encoderForFourCC(unsigned int fourCC);

private:
    CxVideoCodecManager() = default;
    CxVideoCodecManager(CxVideoCodecManager const&) = delete;
    CxVideoCodecManager& operator=(CxVideoCodecManager const&) = delete;
};
