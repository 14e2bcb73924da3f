#pragma once

#include "CxImageData.h"

/// A picture lent to the saver for one call; its pixels stay the recorder's, to be filled again.
class CxLentPicture : public CxImageData
{
public:
    explicit CxLentPicture(SxPicBuf const& picture)
        : m_lent(picture)
    {}
    SxPicBuf const* picBuf() const override { return &m_lent; }

private:
    SxPicBuf const& m_lent;
};
