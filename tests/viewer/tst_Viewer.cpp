#include <QProcess>
#include <QTest>

namespace {

struct SxOutcome
{
    int exitCode = -1;
    QString output;
    QString errors;
};

SxOutcome fx_Run(QStringList const& arguments, bool hasDisplay)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (char const* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    if (hasDisplay)
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(MINIHOST_PROGRAM), QStringList{"view"} + arguments);
    SxOutcome outcome;
    if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit)
        outcome = {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                   QString::fromUtf8(process.readAllStandardError())};
    return outcome;
}

} // namespace

/// `minihost view` up to where a window would open.
class tst_Viewer : public QObject
{
    Q_OBJECT

private slots:
    void printsHelp();
    void failsInOneSentence_data();
    void failsInOneSentence();
};

void tst_Viewer::printsHelp()
{
    SxOutcome const outcome = fx_Run({"--help"}, false);
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(outcome.output.contains(QStringLiteral("Usage: minihost view")));
    QVERIFY(outcome.errors.isEmpty());
}

void tst_Viewer::failsInOneSentence_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("hasDisplay");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("words");
    QTest::newRow("no display") << QStringList() << false << 1 << "There is no display";
    QTest::newRow("unknown option") << QStringList{"--fast"} << true << 2 << "fast";
    QTest::newRow("two files") << QStringList{"a.h264", "b.h264"} << true << 2 << "One file or source";
    QTest::newRow("no plug-in") << QStringList{"--plugin-path", "/nowhere"} << true << 1 << "/nowhere";
}

void tst_Viewer::failsInOneSentence()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, hasDisplay);
    QFETCH(int, exitCode);
    QFETCH(QString, words);
    SxOutcome const outcome = fx_Run(arguments, hasDisplay);
    QCOMPARE(outcome.exitCode, exitCode);
    QVERIFY2(outcome.errors.contains(words), qPrintable(outcome.errors));
    QVERIFY(outcome.errors.contains(QStringLiteral("error: ")));
    QVERIFY2(!outcome.errors.contains(QStringLiteral("QCommandLineParser")), qPrintable(outcome.errors));
    QVERIFY(outcome.output.isEmpty());
}

QTEST_GUILESS_MAIN(tst_Viewer)
#include "tst_Viewer.moc"
