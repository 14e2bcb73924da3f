#pragma once

#include <memory>

#include "IxPictureSource.h"
#include "PictureChanges.h"
#include "PictureFilter.h"
#include "PictureFormat.h"

/// Another source's pictures, turned, cropped and scaled.
class CxFilteredSource : public IxPictureSource
{
public:
    CxFilteredSource(std::unique_ptr<IxPictureSource> source, SxPictureChanges const& changes);

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error.isEmpty() ? m_source->errorText() : m_error; }
    int expectedPictures() const override { return m_source->expectedPictures(); }
    bool hasEnd() const override { return m_source->hasEnd(); }
    bool isLive() const override { return m_source->isLive(); }
    SxMissingPictures missing() const override { return m_source->missing(); }
    SxPictureRate rate() const override { return m_source->rate(); }
    int rotation() const override; ///< none is left where one was asked for
    SxPixelShape
    pixelShape() const override; ///< square once pictures are scaled: their new shape was asked for
    QSize wholeSize() const override { return m_plan.whole; }
    bool knowsSignificantBits() const override { return m_source->knowsSignificantBits(); }
    QStringList takeWarnings() override { return m_source->takeWarnings(); }
    bool isDamaged() const override { return m_source->isDamaged(); }

private:
    std::unique_ptr<IxPictureSource> m_source;
    SxPictureChanges m_changes;
    SxChangePlan m_plan;
    CxPictureFilter m_filter;
    CxOwnedPicture m_input;
    int m_delivered = 0;
    QString m_error;
};
