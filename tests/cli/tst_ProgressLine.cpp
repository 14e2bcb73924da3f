#include <QtTest>
#include <unistd.h>

#include "ProgressLine.h"
#include "support/Terminal.h"

/// The line that tells how far a long piece of work is. What depends on the clock is matched, not compared.
class tst_ProgressLine : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void knownTotalHasABarAndATimeLeft();
    void unknownTotalHasACountOnly();
    void barIsNeverLongerThanItsPlace();
    void isRewrittenNowAndThenOnly();

private:
    QString shown(CxProgressLine& line, int done, qint64 bytes, QString const& remark);

    std::unique_ptr<CxTerminal> m_terminal;
};

void tst_ProgressLine::init()
{
    qputenv("TERM", "xterm");
    m_terminal = nullptr; // gives the stream back before the next takes it
    m_terminal = std::make_unique<CxTerminal>(STDERR_FILENO, 200);
    QVERIFY(m_terminal->isOpen());
}

/// What the line says as soon as it says something.
QString tst_ProgressLine::shown(CxProgressLine& line, int done, qint64 bytes, QString const& remark)
{
    QByteArray text;
    while (text.isEmpty()) {
        line.update(done, bytes, remark);
        text = m_terminal->take();
    }
    return QString::fromUtf8(text);
}

static bool fx_Matches(QString const& text, QString const& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

void tst_ProgressLine::knownTotalHasABarAndATimeLeft()
{
    CxProgressLine line(1000);
    QString const text = shown(line, 250, 64200, "2 skipped");
    QVERIFY2(fx_Matches(text, "\r\\[#{5}\\.{15}\\]  250/1000  [0-9.]+/s  \\d+:\\d\\d  \\d+:\\d\\d left"
                              "  64\\.2 kB  2 skipped\033\\[K"),
             qPrintable(text));
}

void tst_ProgressLine::unknownTotalHasACountOnly()
{
    CxProgressLine line;
    QString text = shown(line, 1, -1, QString());
    QVERIFY2(fx_Matches(text, "\r1 picture  [0-9.]+/s  \\d+:\\d\\d\033\\[K"), qPrintable(text));
    line.setTotal(4); // known only now
    text = shown(line, 1, -1, QString());
    QVERIFY2(text.startsWith("\r[#####...............]  1/4  "), qPrintable(text));
}

void tst_ProgressLine::barIsNeverLongerThanItsPlace()
{
    CxProgressLine line(10);
    QString const text = shown(line, 12, -1, QString()); // a source that gives more than it promised
    QVERIFY2(text.startsWith("\r[####################]  12/10  "), qPrintable(text));
    QVERIFY2(!text.contains("left"), qPrintable(text));
}

void tst_ProgressLine::isRewrittenNowAndThenOnly()
{
    // Of thousands of calls only those a while apart write anything.
    CxProgressLine line(10000);
    int seen = 0;
    for (int done = 0; done < 10000; ++done) {
        line.update(done, -1, QString());
        seen += m_terminal->take().isEmpty() ? 0 : 1;
    }
    QVERIFY2(seen < 5000, qPrintable(QString::number(seen)));
}

QTEST_GUILESS_MAIN(tst_ProgressLine)
#include "tst_ProgressLine.moc"
