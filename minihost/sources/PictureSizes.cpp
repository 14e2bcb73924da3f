#include "PictureSizes.h"

#include <QFileInfo>

#include "FFmpegInput.h"
#include "FFmpegSource.h"
#include "PictureFormat.h"

namespace {

struct SxStored
{
    QSize size; ///< empty when it is not known
    int rotation = 0;
    bool isStill = true;
};

/// What a file's header says.
SxStored fx_Look(QString const& file)
{
    SxStored found;
    AVFormatContext* opened = nullptr;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "pattern_type", "none", 0); // a per cent sign is no pattern for more names
    int const error =
        avformat_open_input(&opened, fx_FFmpegInput(file, QString()).url.constData(), nullptr, &options);
    av_dict_free(&options);
    if (error < 0)
        return found;
    FormatContextPtr const format(opened);
    found.isStill = fx_IsStillFormat(*format->iformat);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        return found;
    int const stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream >= 0)
        found.size =
            QSize(format->streams[stream]->codecpar->width, format->streams[stream]->codecpar->height);
    return found;
}

/// The same with the rotation, which a picture file may say only with the picture itself.
SxStored fx_LookAtPicture(QString const& file, std::atomic<bool> const* stop)
{
    SxStored found = fx_Look(file);
    CxFFmpegSource source({file}, 0, stop);
    CxOwnedPicture picture;
    found.size = QSize();
    if (source.next(picture.get()) != IxPictureSource::Result::Picture)
        return found;
    found.size = QSize(static_cast<int>(picture.get().width), static_cast<int>(picture.get().height));
    found.rotation = source.rotation();
    return found;
}

} // namespace

QString fx_SizeObstacle(QStringList const& files, SxPictureChanges const& changes,
                        std::atomic<bool> const* stop, qint64 first, qint64 end)
{
    QSize wanted;
    qint64 number = 0;
    bool isCounted = true;
    for (QString const& file : files) {
        if ((stop && stop->load()) || (isCounted && number >= end))
            return QString();
        if (!QFileInfo(file).isFile())
            continue; // what comes out of a pipe comes only once
        SxStored const found = changes.turnsItself ? fx_LookAtPicture(file, stop) : fx_Look(file);
        if (found.size.isEmpty())
            continue;
        isCounted = isCounted && found.isStill;
        if (isCounted && number++ < first)
            continue;
        SxChangePlan const plan = fx_PlanChanges(changes, found.size, found.rotation);
        if (!plan.obstacle.isEmpty())
            return QStringLiteral("%1 %2.").arg(file, plan.obstacle);
        if (wanted.isEmpty())
            wanted = plan.size;
        if (plan.size != wanted)
            return file +
                   QStringLiteral(" is %1 x %2, those before it are %3 x %4: a recording has one size, to "
                                  "which --scale would bring them all.")
                       .arg(plan.size.width())
                       .arg(plan.size.height())
                       .arg(wanted.width())
                       .arg(wanted.height());
    }
    return QString();
}
