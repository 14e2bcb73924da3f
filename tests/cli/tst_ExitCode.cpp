#include <QtTest>
#include <unistd.h>

#include "ExitCode.h"
#include "support/Terminal.h"

class tst_ExitCode : public QObject
{
    Q_OBJECT

private slots:
    void helpNamesTheCodesAskedForInLinesThatFit();
    void failureEndsWithItsCodeAndIsTold();
};

void tst_ExitCode::helpNamesTheCodesAskedForInLinesThatFit()
{
    QCOMPARE(fx_ExitCodesHelp({kDone, kBadInput}),
             QString("Exit code: 0 done, 4 input unreadable, damaged or not a recording."));
    QString const all = fx_ExitCodesHelp(
        {kDone, kFailed, kWrongUsage, kNotWhole, kBadInput, kOutputFailed, kNoSuchFrame, kInterrupted});
    for (QString const& line : all.split('\n'))
        QVERIFY2(line.size() <= 80, qPrintable(line));
    QCOMPARE(QString(all).replace('\n', ' '),
             QString("Exit code: 0 done, 1 failed otherwise, 2 wrong usage, 3 done, but not whole (with "
                     "--strict), 4 input unreadable, damaged or not a recording, 5 output failed, 6 no such "
                     "frame, 129, 130, 143 interrupted by HUP, INT, TERM: what is written is complete."));
}

void tst_ExitCode::failureEndsWithItsCodeAndIsTold()
{
    qputenv("NO_COLOR", "1");
    CxTerminal terminal(STDERR_FILENO, 80);
    QVERIFY(terminal.isOpen());
    QCOMPARE(fx_Failed("The disk is full.", kOutputFailed), 5);
    QCOMPARE(terminal.take(), QByteArray("error: The disk is full.\n"));
    QCOMPARE(fx_Failed("Something else."), 1);
    QCOMPARE(terminal.take(), QByteArray("error: Something else.\n"));
    QCOMPARE(fx_WrongUsage("export", "No frames."), 2);
    QCOMPARE(terminal.take(), QByteArray("error: No frames. See minihost export --help.\n"));
}

QTEST_GUILESS_MAIN(tst_ExitCode)
#include "tst_ExitCode.moc"
