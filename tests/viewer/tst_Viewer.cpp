#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include "Viewer.h"

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

/// Closes the program's window once its title holds \p words, or never came to it within half a minute; \p
/// title is then what it was.
void fx_CloseWhenTitled(QString const& words, QElapsedTimer const& since, QString& title)
{
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (!window->isVisible())
            continue;
        title = window->windowTitle();
        if (title.contains(words) || since.elapsed() > 30000) {
            window->close();
            return;
        }
    }
    QTimer::singleShot(1, qApp, [words, since, &title] { fx_CloseWhenTitled(words, since, title); });
}

QString s_title; ///< of the window opened in this process

/// The window's program is made in the function under test, and left only by closing the window.
void fx_WaitForWindow()
{
    QElapsedTimer since;
    since.start();
    QTimer::singleShot(0, qApp,
                       [since] { fx_CloseWhenTitled(QStringLiteral("camera.h264"), since, s_title); });
}

} // namespace

/// `minihost view` up to where a window opens, and one that shows what it was given.
class tst_Viewer : public QObject
{
    Q_OBJECT

private slots:
    void printsHelp();
    void failsInOneSentence_data();
    void failsInOneSentence();
    void windowShowsWhatItWasGivenUntilItIsClosed();
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

void tst_Viewer::windowShowsWhatItWasGivenUntilItIsClosed()
{
    QTemporaryDir const settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    qAddPreRoutine(fx_WaitForWindow);
    QString error;
    QVERIFY2(fx_ShowWindow(PLUGIN_FILE, QStringLiteral(TEST_DATA "/camera.h264"), error), qPrintable(error));
    QVERIFY2(s_title.contains(QStringLiteral("camera.h264")), qPrintable(s_title));
}

QTEST_APPLESS_MAIN(tst_Viewer)
#include "tst_Viewer.moc"
