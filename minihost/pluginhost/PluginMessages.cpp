#include "PluginMessages.h"

#include <QMutex>
#include <QMutexLocker>
#include <QRegularExpression>

namespace {

struct SxCollected
{
    QMutex mutex;
    QStringList sentences;
    QtMessageHandler before = nullptr;
    bool raw = false;
};

SxCollected& fx_Collected()
{
    static SxCollected collected;
    return collected;
}

void fx_Collect(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    SxCollected& collected = fx_Collected();
    if ((type != QtCriticalMsg || collected.raw) && collected.before != nullptr)
        collected.before(type, context, text);
    if (type != QtCriticalMsg)
        return;
    QString const sentence = CxPluginMessages::readable(text);
    if (sentence.contains(QLatin1Char('\n')))
        return; // a dump for the log, not a sentence
    QMutexLocker const lock(&collected.mutex);
    if (collected.sentences.isEmpty() || collected.sentences.last() != sentence)
        collected.sentences.append(sentence);
}

/// The text that QDebug quoted: \", \\ and \n turned back, hexadecimal escapes left alone.
QString fx_Unquoted(QString const& quoted)
{
    QString text;
    for (int i = 0; i < quoted.size(); ++i) {
        if (quoted[i] != QLatin1Char('\\') || i + 1 == quoted.size()) {
            text += quoted[i];
            continue;
        }
        QChar const escaped = quoted[++i];
        if (escaped == QLatin1Char('n'))
            text += QLatin1Char('\n');
        else if (escaped == QLatin1Char('"') || escaped == QLatin1Char('\\'))
            text += escaped;
        else
            text += QLatin1Char('\\') + QString(escaped);
    }
    return text;
}

} // namespace

CxPluginMessages::CxPluginMessages(bool raw)
{
    SxCollected& collected = fx_Collected();
    collected.raw = raw;
    collected.before = qInstallMessageHandler(fx_Collect);
}

CxPluginMessages::~CxPluginMessages() { qInstallMessageHandler(fx_Collected().before); }

QStringList CxPluginMessages::take()
{
    SxCollected& collected = fx_Collected();
    QMutexLocker const lock(&collected.mutex);
    QStringList sentences;
    sentences.swap(collected.sentences);
    return sentences;
}

QString CxPluginMessages::readable(QString const& logged)
{
    // Thread, file, L, line, a colon, an empty word, and the text, which alone is quoted.
    static QRegularExpression const kShape(QStringLiteral(" L \\d+ : +\"((?:[^\"\\\\]|\\\\.)*)\"\\s*$"),
                                           QRegularExpression::DotMatchesEverythingOption);
    static QRegularExpression const kOperation(QStringLiteral("^Cx\\w+::\\w+\\(\\):\\s+"));
    QRegularExpressionMatch const match = kShape.match(logged);
    if (!match.hasMatch())
        return logged;
    return fx_Unquoted(match.captured(1)).remove(kOperation);
}
