#include "QualityTrial.h"

#include <algorithm>
#include <utility>

#include "IxPictureSource.h"
#include "PictureFormat.h"

static constexpr int kMostPictures = 1000; // half a minute that plays
static constexpr int kLead = 100;          // pictures tried before the first that was lost

/// Number of the first skipped picture of those that lie closest together.
static int fx_DensestSkips(QVector<int> const& skipped)
{
    int best = 0;
    int most = 0;
    for (int first = 0, end = 0; first < skipped.size(); ++first) {
        while (end < skipped.size() && skipped[end] < skipped[first] + kMostPictures - kLead)
            ++end;
        if (end - first > most) {
            most = end - first;
            best = skipped[first];
        }
    }
    return best;
}

CxQualityTrial::CxQualityTrial(MakeSource make, SxRecordRequest const& request,
                               SxRecordSummary const& recorded)
    : m_make(std::move(make))
    , m_request(request)
    , m_given(recorded.given)
    , m_count(std::min(recorded.given, kMostPictures))
{
    if (m_count < m_given)
        m_first = std::clamp(fx_DensestSkips(recorded.skipped) - kLead, 0, m_given - m_count);
}

bool CxQualityTrial::keepsAll(SxEncoderOptions const& options)
{
    std::unique_ptr<IxPictureSource> const source = m_make();
    CxOwnedPicture passedOver;
    for (int number = 0; number < m_first && !m_isBrokenOff; ++number)
        m_isBrokenOff = source->next(passedOver.get()) != IxPictureSource::Result::Picture;
    if (m_isBrokenOff)
        return false;

    std::atomic<bool> isEnough{false};
    SxRecordRequest request = m_request;
    request.outputFile = QStringLiteral("/dev/null");
    request.encoder = options;
    request.maxPictures = m_count;
    request.stop = &isEnough;
    SxRecordSummary const tried = fx_Record(*source, request, [&](SxRecordSummary const& soFar) {
        isEnough.store(!soFar.skipped.isEmpty() || (m_request.stop && m_request.stop->load()));
    });
    if (!tried.skipped.isEmpty())
        return false;
    m_isBrokenOff = !tried.error.isEmpty() || tried.given < m_count;
    return !m_isBrokenOff;
}

std::optional<int> CxQualityTrial::lowestQuality(SxEncoderOptions options)
{
    for (; options.quality <= SxEncoderOptions::kQualityMax && !m_isBrokenOff; ++options.quality) {
        if (keepsAll(options))
            return options.quality;
    }
    return std::nullopt;
}
