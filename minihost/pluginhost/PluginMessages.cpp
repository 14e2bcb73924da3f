#include "PluginMessages.h"

#include <QRegularExpression>

namespace {

struct SxHandler
{
    QtMessageHandler before = nullptr;
    bool raw = false;
};

SxHandler s_handler; // set before there are threads that log

/// A plug-in logs in the thread that calls it.
thread_local QStringList s_sentences;

void fx_Collect(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    if ((type != QtCriticalMsg || s_handler.raw) && s_handler.before)
        s_handler.before(type, context, text);
    if (type != QtCriticalMsg)
        return;
    QString const sentence = CxPluginMessages::readable(text);
    if (sentence.contains(QLatin1Char('\n')))
        return; // a dump for the log, not a sentence
    if (s_sentences.isEmpty() || s_sentences.last() != sentence)
        s_sentences.append(sentence);
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
    s_handler.raw = raw;
    s_handler.before = qInstallMessageHandler(fx_Collect);
}

CxPluginMessages::~CxPluginMessages() { qInstallMessageHandler(s_handler.before); }

QStringList CxPluginMessages::take()
{
    QStringList sentences;
    sentences.swap(s_sentences);
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
