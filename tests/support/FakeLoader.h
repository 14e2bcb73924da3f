#pragma once

#include <QMutex>
#include <QObject>
#include <QSemaphore>
#include <QThread>
#include <QVector>

#include "IxImageDataLoader.h"
#include "IxVideoAccessor.h"

/// What a CxFakeLoader was asked, and permission for it to go on.
struct SxLoaderLog
{
    QMutex mutex;
    QVector<int> loaded; ///< guarded by mutex, as is thread
    QThread* thread = nullptr;
    bool isDeleted = false;
    bool isGated = false; ///< each picture then waits for one permission of gate
    QSemaphore entered;   ///< released at each picture asked for
    QSemaphore gate;

    QVector<int> take(); ///< the numbers asked for since the last call
};

/// Forty pictures of 4 x 4 pixels whose blue is their number; key frames every ten; 13 is broken.
class CxFakeLoader : public QObject, public IxImageDataLoader, public IxVideoAccessor
{
    Q_OBJECT

public:
    explicit CxFakeLoader(SxLoaderLog& log)
        : m_log(log)
    {}
    ~CxFakeLoader() override { m_log.isDeleted = true; }

    bool load() override { return true; }
    int sequenceSize() override { return 40; }
    IxChainData* loadedData(int index) override;
    QString inputFile() override { return {}; }
    void setInputFile(QString const&) override {}
    double loadedFps() override { return 30.0; }
    QList<CxImageFormat> supportedImageFormats() override { return {}; }
    int framesCount() override { return 40; }
    unsigned long frameDataSize(int) override { return 1; }
    bool frameData(int, void*, unsigned long&) override { return false; }
    int lastProcessedFrame() override { return -1; }
    void keyFrames(QList<int>& frames) override { frames = {0, 10, 20, 30}; }

private:
    SxLoaderLog& m_log;
};
