#include "FFmpegInput.h"

#include <QFileInfo>

static bool fx_IsDevice(AVInputFormat const* format) { return format && (format->flags & AVFMT_NOFILE) != 0; }

SxFFmpegInput fx_FFmpegInput(QString const& input, QString const& format)
{
    SxFFmpegInput result;
    if (!format.isEmpty())
        result.format = av_find_input_format(format.toLatin1().constData());
    if (input == QLatin1String("-")) {
        result.url = "pipe:0";
        return result;
    }
    if (QFileInfo::exists(input) && !fx_IsDevice(result.format)) {
        result.url = "file:" + input.toLocal8Bit(); // a colon in its name would look like a protocol
        return result;
    }
    auto const colon = input.indexOf(QLatin1Char(':'));
    if (colon > 0) {
        FFmpegReader* const device = av_find_input_format(input.left(colon).toLatin1().constData());
        if (fx_IsDevice(device) && (!result.format || result.format == device)) {
            result.format = device;
            result.url = input.mid(colon + 1).toLocal8Bit();
            return result;
        }
    }
    result.url = input.toLocal8Bit();
    return result;
}

bool fx_HasEnd(AVFormatContext const& opened)
{
    AVClass const* const reader = opened.iformat->priv_class;
    if (reader && AV_IS_INPUT_DEVICE(reader->category))
        return false;
    // Without a server in its name it is a file or a pipe. Sockets, too, are called seekable.
    return !QByteArray(opened.url).contains("://") || opened.duration > 0 ||
           (opened.pb && opened.pb->seekable != 0 && avio_size(opened.pb) >= 0);
}

bool fx_IsLive(AVFormatContext const& opened)
{
    // What a graph of filters draws it draws when it is asked.
    return !fx_HasEnd(opened) && qstrcmp(opened.iformat->name, "lavfi") != 0;
}

bool fx_IsTextFormat(AVInputFormat const& format)
{
    for (char const* name : {"tty", "bin", "xbin", "adf", "idf"}) {
        if (qstrcmp(format.name, name) == 0)
            return true;
    }
    return false;
}

bool fx_IsStillFormat(AVInputFormat const& format)
{
    QByteArray const name(format.name);
    return name.endsWith("_pipe") || name == "image2";
}

QString fx_OpenErrorText(int error)
{
    if (error == AVERROR_INVALIDDATA)
        return QStringLiteral("this is no picture or video that can be read");
    if (error == AVERROR_PROTOCOL_NOT_FOUND)
        return QStringLiteral("there is no such file, and no such protocol or device either");
    return fx_FFmpegErrorText(error);
}
