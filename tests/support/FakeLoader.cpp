#include "support/FakeLoader.h"

#include <QMutexLocker>
#include <algorithm>
#include <utility>

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "PictureFormat.h"

QVector<int> SxLoaderLog::take()
{
    QMutexLocker const lock(&mutex);
    return std::exchange(loaded, {});
}

IxChainData* CxFakeLoader::loadedData(int index)
{
    {
        QMutexLocker const lock(&m_log.mutex);
        m_log.loaded.append(index);
        m_log.thread = QThread::currentThread();
    }
    m_log.entered.release();
    if (m_log.isGated)
        m_log.gate.acquire();
    if (index == 13)
        return nullptr;
    SxPicBuf picture;
    if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(4, 4, 4, 8), false, 0))
        return nullptr;
    std::fill_n(picture.data, picture.pitch * picture.height, static_cast<uchar>(index));
    auto* const data = new CxImageData;
    data->setPicBuf(picture);
    return data;
}
