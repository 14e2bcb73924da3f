#include "CxImageData.h"
#include "CxPicBufAPI.h"

IxChainData::IxChainData() = default;
IxChainData::~IxChainData() = default;

CxImageData::CxImageData() = default;
CxImageData::~CxImageData() { CxPicBufAPI::FreePicBuf(m_picture, true); }

void CxImageData::setPicBuf(SxPicBuf const& picture)
{
    // The picture may be a copy of our own record, with another format or time: its pixels stay.
    if (picture.data != m_picture.data)
        CxPicBufAPI::FreePicBuf(m_picture, true);
    m_picture = picture;
}

SxPicBuf const* CxImageData::picBuf() const { return &m_picture; }
