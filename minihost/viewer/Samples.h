#pragma once

#include <type_traits>

#include "PictureFormat.h"

/// Row \p y of a picture.
template<class Sample>
Sample const* fx_SampleRow(SxPicBuf const& picture, int y)
{
    return reinterpret_cast<Sample const*>(picture.data + static_cast<size_t>(y) * picture.pitch);
}

/// Calls \p work with a sample of the picture's type and its components as a constant, so that loops over
/// pixels, of which there are millions, know both while they are compiled.
template<class Work>
void fx_WithSamples(SxPicBuf const& picture, Work const& work)
{
    auto const with = [&](auto components) {
        if (fx_IsWordFormat(picture))
            work(quint16{}, components);
        else
            work(uchar{}, components);
    };
    if (picture.components == 1)
        with(std::integral_constant<int, 1>{});
    else if (picture.components == 3)
        with(std::integral_constant<int, 3>{});
    else
        with(std::integral_constant<int, 4>{});
}
