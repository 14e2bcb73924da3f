#include <QtTest>

#include <thread>

#include "PluginMessages.h"

class tst_PluginMessages : public QObject
{
    Q_OBJECT

private slots:
    void criticalMessagesBecomeSentences();
    void whatIsNoTextStaysEscaped();
    void otherMessagesPass();
    void eachThreadTakesItsOwn();
};

/// Logs as plug-ins do.
static void fx_LogAsPluginsDo(QString const& text)
{
    qCritical() << QThread::currentThreadId() << "/src/H264VideoSaver.cpp"
                << "L" << 31 << ":"
                << "" << text;
}

void tst_PluginMessages::criticalMessagesBecomeSentences()
{
    CxPluginMessages const messages;
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Filename is empty.");
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Filename is empty.");
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Cannot open the '/a \"b\"\\c: d.h264'.");
    qCritical() << "=== Encoder Params ===\nSize=1x1\n"; // a dump is not for people
    qCritical() << "something else";
    QCOMPARE(CxPluginMessages::take(),
             (QStringList{"Filename is empty.", "Cannot open the '/a \"b\"\\c: d.h264'.", "something else"}));
    QCOMPARE(CxPluginMessages::take(), QStringList());
}

void tst_PluginMessages::whatIsNoTextStaysEscaped()
{
    CxPluginMessages const messages;
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Cannot open the 'a\tb'.");
    QCOMPARE(CxPluginMessages::take(), QStringList{"Cannot open the 'a\\tb'."});
}

static QStringList s_passed;

void tst_PluginMessages::otherMessagesPass()
{
    QtMessageHandler const before = qInstallMessageHandler(
        [](QtMsgType, QMessageLogContext const&, QString const& text) { s_passed += text; });
    {
        CxPluginMessages const quiet;
        qWarning("a warning");
        fx_LogAsPluginsDo("CxSaver::save(): No.");
    }
    {
        CxPluginMessages const raw(true);
        qCritical("raw");
    }
    qInstallMessageHandler(before);
    QCOMPARE(s_passed, (QStringList{"a warning", "raw"}));
    QCOMPARE(CxPluginMessages::take(), (QStringList{"No.", "raw"}));
}

void tst_PluginMessages::eachThreadTakesItsOwn()
{
    CxPluginMessages const messages;
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): of the window");
    QStringList ofReader;
    std::thread([&ofReader] {
        fx_LogAsPluginsDo("CxH264VideoLoader::open(): of the reader");
        ofReader = CxPluginMessages::take();
    }).join();
    QCOMPARE(ofReader, QStringList{"of the reader"});
    QCOMPARE(CxPluginMessages::take(), QStringList{"of the window"});
}

QTEST_GUILESS_MAIN(tst_PluginMessages)
#include "tst_PluginMessages.moc"
