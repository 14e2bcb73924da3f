#pragma once

#include <QByteArray>

#include "FFmpegHandles.h"
#include "SxPicBuf.h"

/// Applies FFmpeg's filters to host pictures in the format that they have: no sample changes its depth, and
/// grey and colour are never converted into each other.
class CxPictureFilter
{
public:
    /// \param filters  as FFmpeg's filter graphs are written, one picture in, one out; such that scale
    ///                 without overshooting.
    /// \param target  empty or an earlier result, as for IxPictureSource::next(); not \p source.
    /// \return false when FFmpeg refuses or without memory.
    bool apply(SxPicBuf const& source, QByteArray const& filters, SxPicBuf& target);

private:
    bool build(SxPicBufInfo const& format, QByteArray const& filters);

    FilterGraphPtr m_graph; ///< kept between pictures of one format
    SxPicBufInfo m_format;  ///< of those
    QByteArray m_filters;
    AVFilterContext* m_entry = nullptr; ///< the graph's
    AVFilterContext* m_exit = nullptr;
    FramePtr m_in;
    FramePtr m_out;
};
