#pragma once

#include <QString>

class IxChainData;

/// Reads a sequence of chain data from one file. One thread at a time.
///
/// Slot order is fixed; where this interface ends and IxImageDataLoader begins is this stand-in's
/// choice and changes no slot.
class IxChainDataLoader
{
public:
    virtual ~IxChainDataLoader() {}

    virtual bool load() = 0;        ///< opens the input file; true when it is open
    virtual int sequenceSize() = 0; ///< pictures in the sequence; 0 when it cannot be read

    /// A new object with picture \p index, counted from 0, that the caller deletes; null when there
    /// is no such picture or it cannot be read.
    virtual IxChainData* loadedData(int index) = 0;

    virtual QString inputFile() = 0;
    virtual void setInputFile(QString const& fileName) = 0; ///< before load()
    virtual double loadedFps() = 0;                         ///< pictures a second; 0 when unknown
};
