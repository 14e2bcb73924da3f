#include <QtTest>
#include <fcntl.h>
#include <unistd.h>

#include "Console.h"
#include "support/Terminal.h"

/// What a person sees on a terminal: tst_main and the commands' tests see to files and pipes.
class tst_Console : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void transientLineIsRewrittenAndGoesBeforeAMessage();
    void transientLineNeverWraps();
    void nothingIsTransientWhereItCannotBeRewritten_data();
    void nothingIsTransientWhereItCannotBeRewritten();
    void labelsAreColouredOnTerminalsOnly_data();
    void labelsAreColouredOnTerminalsOnly();
    void quietLeavesOnlyWarningsAndErrors();
    void errorWithoutMemoryLooksLikeAnyOther();
};

static constexpr int kColumns = 20;

void tst_Console::init()
{
    qputenv("TERM", "xterm");
    qunsetenv("NO_COLOR");
    Console::setQuiet(false);
}

void tst_Console::transientLineIsRewrittenAndGoesBeforeAMessage()
{
    CxTerminal terminal(STDERR_FILENO, kColumns);
    QVERIFY(terminal.isOpen());
    QVERIFY(Console::showsTransient());
    Console::transient("1 of 3");
    Console::transient("2 of 3");
    QCOMPARE(terminal.take(), QByteArray("\r1 of 3\033[K\r2 of 3\033[K"));
    Console::message("3 pictures");
    QCOMPARE(terminal.take(), QByteArray("\r\033[K3 pictures\n"));
    Console::message("the end"); // with no line left to remove
    QCOMPARE(terminal.take(), QByteArray("the end\n"));
}

void tst_Console::transientLineNeverWraps()
{
    CxTerminal terminal(STDERR_FILENO, kColumns);
    Console::transient(QString(3 * kColumns, QLatin1Char('x')));
    QCOMPARE(terminal.take(), "\r" + QByteArray(kColumns - 1, 'x') + "\033[K");
    Console::transient(QString());
    QCOMPARE(terminal.take(), QByteArray("\r\033[K"));

    CxTerminal unknown(STDERR_FILENO, 0); // a terminal that does not tell its width
    Console::transient(QString(200, QLatin1Char('x')));
    Console::transient(QString());
    QCOMPARE(unknown.take(), "\r" + QByteArray(79, 'x') + "\033[K\r\033[K");
}

void tst_Console::nothingIsTransientWhereItCannotBeRewritten_data()
{
    QTest::addColumn<bool>("isTerminal");
    QTest::addColumn<QByteArray>("term");
    QTest::addColumn<bool>("isQuiet");
    QTest::newRow("terminal that cannot") << true << QByteArray("dumb") << false;
    QTest::newRow("quiet") << true << QByteArray("xterm") << true;
    QTest::newRow("pipe") << false << QByteArray("xterm") << false;
}

void tst_Console::nothingIsTransientWhereItCannotBeRewritten()
{
    QFETCH(bool, isTerminal);
    QFETCH(QByteArray, term);
    QFETCH(bool, isQuiet);
    qputenv("TERM", term);
    Console::setQuiet(isQuiet);
    CxTerminal terminal(STDERR_FILENO, kColumns);
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    if (!isTerminal)
        dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    QVERIFY(!Console::showsTransient());
    Console::transient("1 of 3");
    Console::transient(QString());
    QCOMPARE(terminal.take(), QByteArray());
    char byte = 0;
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    QVERIFY(read(ends[0], &byte, 1) <= 0);
    close(ends[0]);
}

void tst_Console::labelsAreColouredOnTerminalsOnly_data()
{
    QTest::addColumn<QByteArray>("term");
    QTest::addColumn<QByteArray>("noColor");
    QTest::addColumn<QByteArray>("expected");
    QByteArray const plain("warning: it is late\nerror: it is too late\n");
    QTest::newRow("terminal") << QByteArray("xterm") << QByteArray()
                              << QByteArray("\033[33mwarning:\033[0m it is late\n"
                                            "\033[31merror:\033[0m it is too late\n");
    QTest::newRow("terminal without colours") << QByteArray("dumb") << QByteArray() << plain;
    QTest::newRow("unwanted") << QByteArray("xterm") << QByteArray("1") << plain;
}

void tst_Console::labelsAreColouredOnTerminalsOnly()
{
    QFETCH(QByteArray, term);
    QFETCH(QByteArray, noColor);
    qputenv("TERM", term);
    qputenv("NO_COLOR", noColor);
    CxTerminal terminal(STDERR_FILENO, kColumns);
    Console::warning("it is late");
    Console::error("it is too late");
    QTEST(terminal.take(), "expected");
}

void tst_Console::quietLeavesOnlyWarningsAndErrors()
{
    qputenv("NO_COLOR", "1");
    CxTerminal terminal(STDERR_FILENO, kColumns);
    Console::setQuiet(true);
    Console::message("3 pictures");
    Console::warning("one is missing");
    Console::error("all are missing");
    QCOMPARE(terminal.take(), QByteArray("warning: one is missing\nerror: all are missing\n"));
}

void tst_Console::errorWithoutMemoryLooksLikeAnyOther()
{
    qputenv("NO_COLOR", "1");
    CxTerminal terminal(STDERR_FILENO, kColumns);
    Console::error("Out of memory.");
    QByteArray const other = terminal.take();
    Console::errorWithoutMemory("Out of memory.");
    QCOMPARE(terminal.take(), other);
}

QTEST_GUILESS_MAIN(tst_Console)
#include "tst_Console.moc"
