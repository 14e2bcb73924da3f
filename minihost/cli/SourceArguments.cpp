#include "SourceArguments.h"

#include <QRegularExpression>

QVector<SxOption> fx_PartOptions()
{
    return {
        {"start", 0, "T",
         QStringLiteral("leave out what comes before: 1:02.5, 500ms, 10m, or 100f, pictures;\n"
                        "it begins with the first picture at that time or behind it")},
        {"duration", 0, "T", QStringLiteral("end after that much: 1:00, 10s, 300f")},
    };
}

QVector<SxOption> fx_PictureOptions()
{
    return {
        {"rotate", 0, "R",
         QStringLiteral("turn pictures clockwise by 90, 180 or 270 degrees; auto: as the\n"
                        "source says, as phones do")},
        {"crop", 0, "WxH+X+Y",
         QStringLiteral("keep this part of the (turned) pictures, X and Y from the top left:\n"
                        "640x480+0+120")},
        {"scale", 0, "WxH", QStringLiteral("bring the (turned, cropped) pictures to this size: 1280x720")},
    };
}

static QString fx_Complaint(QCommandLineParser const& parser, QString const& option, QString const& expected)
{
    return QStringLiteral("--%1 takes %2, not '%3'.").arg(option, expected, parser.value(option));
}

static QString fx_TakeLength(QCommandLineParser const& parser, QString const& option, qint64 least,
                             std::optional<SxPlayLength>& length)
{
    if (!parser.isSet(option))
        return QString();
    length = fx_PlayLength(parser.value(option));
    return length && length->value >= least
               ? QString()
               : fx_Complaint(
                     parser, option,
                     QStringLiteral("a time such as 1:02.5, 3s, 10m or 500ms, or pictures such as 100f"));
}

QString fx_TakePartOptions(QCommandLineParser const& parser, SxSourcePart& part)
{
    QString const complaint = fx_TakeLength(parser, QStringLiteral("start"), 0, part.start);
    return complaint.isEmpty() ? fx_TakeLength(parser, QStringLiteral("duration"), 1, part.duration)
                               : complaint;
}

static QString fx_TakeRotation(QCommandLineParser const& parser, SxPictureChanges& changes)
{
    QString const option = QStringLiteral("rotate");
    if (!parser.isSet(option))
        return QString();
    QString const value = parser.value(option);
    changes.turnsItself = value == QLatin1String("auto");
    static QStringList const kTurns{QStringLiteral("90"), QStringLiteral("180"), QStringLiteral("270")};
    if (changes.turnsItself)
        return QString();
    changes.rotation = kTurns.contains(value) ? value.toInt() : 0;
    return changes.rotation != 0 ? QString()
                                 : fx_Complaint(parser, option, QStringLiteral("90, 180, 270 or auto"));
}

static QString fx_TakeCrop(QCommandLineParser const& parser, SxPictureChanges& changes)
{
    static QRegularExpression const kPart(
        QStringLiteral("^(\\d{1,6})x(\\d{1,6})\\+(\\d{1,6})\\+(\\d{1,6})$"));
    QString const option = QStringLiteral("crop");
    if (!parser.isSet(option))
        return QString();
    QRegularExpressionMatch const match = kPart.match(parser.value(option));
    changes.crop = QRect(match.captured(3).toInt(), match.captured(4).toInt(), match.captured(1).toInt(),
                         match.captured(2).toInt());
    return changes.crop.isEmpty()
               ? fx_Complaint(parser, option, QStringLiteral("WIDTHxHEIGHT+LEFT+TOP, such as 640x480+0+120"))
               : QString();
}

static QString fx_TakeScale(QCommandLineParser const& parser, SxPictureChanges& changes)
{
    static QRegularExpression const kSize(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    QString const option = QStringLiteral("scale");
    if (!parser.isSet(option))
        return QString();
    QRegularExpressionMatch const match = kSize.match(parser.value(option));
    changes.scale = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    bool const isTaken = changes.scale.width() >= kSmallestSide && changes.scale.height() >= kSmallestSide &&
                         changes.scale.width() % 2 == 0 && changes.scale.height() % 2 == 0;
    return isTaken ? QString()
                   : fx_Complaint(parser, option,
                                  QStringLiteral("WIDTHxHEIGHT, both even and at least %1, such as 1280x720")
                                      .arg(kSmallestSide));
}

QString fx_TakePictureOptions(QCommandLineParser const& parser, SxPictureChanges& changes)
{
    QString complaint = fx_TakeRotation(parser, changes);
    if (complaint.isEmpty())
        complaint = fx_TakeCrop(parser, changes);
    if (complaint.isEmpty())
        complaint = fx_TakeScale(parser, changes);
    return complaint;
}
