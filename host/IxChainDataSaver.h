#pragma once

#include "tarnCoreGlobal.h"

class IxChainData;

/// Writes a sequence of chain data. One thread at a time; deleting the saver ends the recording.
///
/// Slot order is fixed; where this interface ends and IxImageDataSaver begins is this stand-in's
/// choice and changes no slot.
class TARNCORE_EXPORT IxChainDataSaver
{
public:
    virtual ~IxChainDataSaver();

    virtual void setSequenceSize(int count) = 0; ///< pictures that will come, as far as known

    /// Writes one item; \p data stays the caller's. False: this item was not written.
    virtual bool save(IxChainData const* data, int index) = 0;
};
