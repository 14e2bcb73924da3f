#include "FilteredSource.h"

#include <utility>

CxFilteredSource::CxFilteredSource(std::unique_ptr<IxPictureSource> source, SxPictureChanges const& changes)
    : m_source(std::move(source))
    , m_changes(changes)
{}

int CxFilteredSource::rotation() const
{
    return m_changes.turnsItself || m_changes.rotation != 0 ? 0 : m_source->rotation();
}

SxPixelShape CxFilteredSource::pixelShape() const
{
    SxPixelShape const shape = m_source->pixelShape();
    if (!m_changes.scale.isEmpty())
        return {};
    return m_plan.isTurned ? SxPixelShape{shape.height, shape.width} : shape;
}

IxPictureSource::Result CxFilteredSource::next(SxPicBuf& picture)
{
    SxPicBuf& input = m_input.get();
    Result const result = m_source->next(input);
    if (result != Result::Picture)
        return result;
    QSize const stored(static_cast<int>(input.width), static_cast<int>(input.height));
    m_plan = fx_PlanChanges(m_changes, stored, m_source->rotation());
    if (!m_plan.obstacle.isEmpty())
        m_error = QStringLiteral("Picture %1 %2.").arg(m_delivered).arg(m_plan.obstacle);
    else if (m_plan.filters.isEmpty())
        std::swap(input, picture);
    else if (!m_filter.apply(input, m_plan.filters, picture))
        m_error = QStringLiteral("Picture %1 cannot be brought to %2 x %3: FFmpeg's filters refuse.")
                      .arg(m_delivered)
                      .arg(m_plan.size.width())
                      .arg(m_plan.size.height());
    ++m_delivered;
    return m_error.isEmpty() ? Result::Picture : Result::Error;
}
