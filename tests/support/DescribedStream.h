#pragma once

#include <QByteArray>

/// \p stream, H.264, with full range, BT.601's matrix and \p rate pictures a second written into its
/// parameter sets. Empty when FFmpeg refuses.
QByteArray fx_DescribedStream(QByteArray const& stream, int rate);
