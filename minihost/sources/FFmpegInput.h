#pragma once

#include <QByteArray>
#include <QString>

#include "FFmpegHandles.h"

/// What to hand to FFmpeg for one input as its user wrote it.
struct SxFFmpegInput
{
    QByteArray url;
    FFmpegReader* format = nullptr; ///< null: find out
};

/// \param input  a file, "-" for standard input, a URL, or DEVICE:NAME.
/// \param format  name of the reader that the user chose; empty: find out.
SxFFmpegInput fx_FFmpegInput(QString const& input, QString const& format);

/// False for devices, and for streams out of a network that neither know their length nor can be read again.
bool fx_HasEnd(AVFormatContext const& opened);

/// True for those of them whose pictures come by their own clock.
bool fx_IsLive(AVFormatContext const& opened);

/// True for FFmpeg's readers that draw a text's letters: it would be a slip of the file's name.
bool fx_IsTextFormat(AVInputFormat const& format);

/// True for FFmpeg's readers of single pictures: "png_pipe", "jpeg_pipe", "image2".
bool fx_IsStillFormat(AVInputFormat const& format);

/// Why FFmpeg does not read an input, half a sentence.
QString fx_OpenErrorText(int error);
