#pragma once

#include <QObject>
#include <memory>

#include "IxImageDataLoader.h"
#include "IxPictureSource.h"

/// The pictures of a part of a recording, to be saved anew.
class CxRecordingSource : public IxPictureSource
{
public:
    /// \param loader  of the host's making; used and deleted by the thread that reads.
    /// \param first, last  numbers of the pictures at the ends, both included.
    CxRecordingSource(std::unique_ptr<QObject> loader, QString const& fileName, int first, int last);
    ~CxRecordingSource() override;

    /// Gives the loader to the thread that will read: what it makes there becomes its children.
    void moveToThread(QThread* thread) { m_loaderObject->moveToThread(thread); }

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error; }
    int expectedPictures() const override { return m_last - m_first + 1; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }

private:
    std::unique_ptr<QObject> m_loaderObject;
    IxImageDataLoader* m_loader;
    int m_first;
    int m_last;
    int m_next;
    QString m_error;
};
