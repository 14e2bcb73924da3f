#include "MediaProbe.h"

#include "FFmpegInput.h"

extern "C" {
#include <libavformat/avformat.h>
}

QString fx_MediaName(QByteArray const& head)
{
    QByteArray bytes = head + QByteArray(AVPROBE_PADDING_SIZE, '\0');
    AVProbeData data{};
    data.filename = "";
    data.buf = reinterpret_cast<unsigned char*>(bytes.data());
    data.buf_size = static_cast<int>(head.size());
    int score = AVPROBE_SCORE_EXTENSION; // what is less is a guess
    AVInputFormat const* const format = av_probe_input_format2(&data, 1, &score);
    if (!format || fx_IsTextFormat(*format) || qstrcmp(format->name, "h264") == 0)
        return QString();
    QString const name = QString::fromUtf8(format->long_name ? format->long_name : format->name);
    return fx_IsStillFormat(*format) ? QStringLiteral("a picture") : name;
}
