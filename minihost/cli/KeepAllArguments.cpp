#include "KeepAllArguments.h"

QVector<SxOption> fx_KeepAllOptions()
{
    return {
        {"keep-all", 0, nullptr,
         QStringLiteral("skip no picture: raise the quality, reading the source again, until\n"
                        "none is skipped, else write nothing; a source that comes only once\n"
                        "has the highest quality, and exit code 3 when any is skipped")},
        {"may-change", 0, "WHAT",
         QStringLiteral("with --keep-all, where quality alone does not do it: level for a\n"
                        "higher one, keyframe-rate for fewer key frames or, at last, nothing\n"
                        "but key frames, which are never skipped; level,keyframe-rate")},
    };
}

QString fx_TakeKeepAllOptions(QCommandLineParser const& parser, SxKeepAllWish& wish)
{
    QString const mayChange = QStringLiteral("may-change");
    wish.isWanted = parser.isSet(QStringLiteral("keep-all"));
    if (!parser.isSet(mayChange))
        return QString();
    if (!wish.isWanted)
        return QStringLiteral("--may-change is only for --keep-all.");
    for (QString const& what : parser.value(mayChange).split(QLatin1Char(','))) {
        if (what == QLatin1String("level"))
            wish.consent.level = true;
        else if (what == QLatin1String("keyframe-rate"))
            wish.consent.keyFrames = true;
        else
            return QStringLiteral("--may-change takes level, keyframe-rate or level,keyframe-rate, not '%1'.")
                .arg(parser.value(mayChange));
    }
    return QString();
}
