#pragma once

#include "Canvas.h"
#include "SxPicBuf.h"

/// Many pictures on one, in rows from the left, each with its number below.
class CxContactSheet
{
public:
    static constexpr int kMostColumns = 100;

    /// \param columns  tiles in a row, 1 to kMostColumns
    /// \param count    pictures to come, 1 or more
    CxContactSheet(int columns, int count);

    /// Puts \p picture on the next tile; the first one's shape is that of all tiles, which are up to 320
    /// pixels wide. False when the sheet would be larger than picture files can be, or without memory.
    bool add(int number, SxPicBuf const& picture);

    /// The sheet so far as RGB32 into \p sheet, which has no memory yet. False without memory, or before
    /// the first picture.
    bool finish(SxPicBuf& sheet);

private:
    bool begin(SxPicBuf const& picture);
    SxPicBuf window(int x, int y, int width, int height);

    int m_columns;
    int m_count;
    int m_added = 0;
    int m_tileWidth = 0; ///< of the picture on it
    int m_tileHeight = 0;
    SxCanvas m_canvas;
};
