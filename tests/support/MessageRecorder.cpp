#include "support/MessageRecorder.h"

#include <QRegularExpression>

static QStringList s_criticals;
static QtMessageHandler s_previous = nullptr;

static void fx_Record(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (type == QtCriticalMsg)
        s_criticals.append(message);
    else if (s_previous)
        s_previous(type, context, message);
}

CxMessageRecorder::CxMessageRecorder()
{
    s_criticals.clear();
    s_previous = qInstallMessageHandler(fx_Record);
}

CxMessageRecorder::~CxMessageRecorder() { qInstallMessageHandler(s_previous); }

QStringList CxMessageRecorder::takeRaw()
{
    QStringList messages;
    messages.swap(s_criticals);
    return messages;
}

QStringList CxMessageRecorder::takeTexts()
{
    QRegularExpression const form(QStringLiteral("^0x[0-9a-f]+ \\S.*\\.cpp L \\d+ :  \"(.*)\"$"));
    QStringList texts;
    for (QString const& message : takeRaw()) {
        QRegularExpressionMatch const match = form.match(message);
        texts.append(match.hasMatch() ? match.captured(1) : message);
    }
    return texts;
}
