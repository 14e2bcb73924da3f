#pragma once

#include "IxChainData.h"
#include "SxPicBuf.h"

/// Chain data that holds one picture.
///
/// Takes the picture's memory over from whoever calls setPicBuf() and releases it with the object.
class TARNCORE_EXPORT CxImageData : public IxChainData
{
    Q_OBJECT

public:
    CxImageData();
    ~CxImageData() override;

    /// Stores the picture, whose memory now belongs to this object; the picture held before is released.
    void setPicBuf(SxPicBuf const& picture);

    /// The picture held; never null, its `data` is null when none was set. Valid until the next
    /// setPicBuf(). Name and slot are this stand-in's choice.
    virtual SxPicBuf const* picBuf() const;

private:
    SxPicBuf m_picture;
};
