#pragma once

#include <QString>

#include "SxPicBuf.h"

class IxVideoAccessor;

/// Turns coded frames into pictures: one object a stream, one thread at a time.
class IxVideoDecoder
{
public:
    virtual ~IxVideoDecoder() {}

    virtual QString name() = 0;
    virtual unsigned int fourCC() = 0; ///< four characters, the first in the lowest byte

    /// Decodes frame \p frame of the stream behind \p accessor. A \p picture with memory must have
    /// the decoder's format and the stream's size; one without gets memory, which is the caller's.
    virtual bool decode(int frame, IxVideoAccessor* accessor, SxPicBuf& picture) = 0;
};
