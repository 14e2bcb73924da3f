#pragma once

#include <QList>

#include "CxImageFormat.h"
#include "IxChainDataLoader.h"

/// A loader whose chain data are pictures: loadedData() returns a CxImageData.
class IxImageDataLoader : public IxChainDataLoader
{
public:
    virtual QList<CxImageFormat> supportedImageFormats() = 0; ///< for the host's open dialog
};
