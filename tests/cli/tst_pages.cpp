#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include "support/FileBytes.h"
#include "support/Minihost.h"

/// The man page and the completions have what help has: every command with its options, and no others.
class tst_pages : public QObject
{
    Q_OBJECT

private slots:
    void optionsAreThoseOfHelp_data();
    void optionsAreThoseOfHelp();
    void bashCompletesWhatHasBegun_data();
    void bashCompletesWhatHasBegun();
};

static QString fx_Page(char const* name)
{
    return QString::fromUtf8(fx_FileBytes(QStringLiteral(PAGES "/") + QLatin1String(name)));
}

/// What \p pattern captures in \p text, sorted, none twice.
static QStringList fx_Captured(QString const& text, char const* pattern)
{
    QStringList found;
    QRegularExpression const expression(QString::fromLatin1(pattern), QRegularExpression::MultilineOption);
    for (auto it = expression.globalMatch(text); it.hasNext();)
        found += it.next().captured(1);
    found.removeDuplicates();
    found.sort();
    return found;
}

/// The part of \p text from \p begin, a line of it, to the next line that matches \p end.
static QString fx_Section(QString const& text, QString const& begin, char const* end)
{
    auto const start = text.indexOf(QLatin1Char('\n') + begin);
    if (start < 0)
        return QString();
    QString const rest = text.mid(start + 1 + begin.size());
    return rest.left(
        rest.indexOf(QRegularExpression(QString::fromLatin1(end), QRegularExpression::MultilineOption)));
}

static QStringList fx_Commands()
{
    QString const help = QString::fromUtf8(fx_RunMinihost({"--help"}).out);
    QStringList commands = fx_Captured(help.mid(help.indexOf("Usage:")), "^  ([a-z]+)  +");
    commands.removeAll("help");
    return commands;
}

void tst_pages::optionsAreThoseOfHelp_data()
{
    QTest::addColumn<QString>("command");
    for (QString const& command : fx_Commands())
        QTest::newRow(qPrintable(command)) << command;
}

void tst_pages::optionsAreThoseOfHelp()
{
    QFETCH(QString, command);
    QString const help = QString::fromUtf8(fx_RunMinihost({"help", command}).out);
    QStringList const options = fx_Captured(help, "^  (?:-., )?--([a-z-]+)");
    QStringList const letters = fx_Captured(help, "^  -(.), ");
    QVERIFY(options.contains("help") && letters.contains("h"));

    QString const man = fx_Section(fx_Page("minihost.1"), ".SS " + command + "\n", "^\\.S[SH] ").remove('\\');
    QCOMPARE(fx_Captured(man, "^\\.BR .*--([a-z-]+)"), options);
    QCOMPARE(fx_Captured(man, "^\\.BR -(\\w) "), letters);

    QString const bash = fx_Section(fx_Page("minihost.bash"), "    " + command + ") words=", ";;");
    QCOMPARE(fx_Captured(bash, "--([a-z-]+)"), options);
    QCOMPARE(fx_Captured(bash, " -(\\w)\\b"), letters);

    QString const zsh = fx_Section(fx_Page("_minihost"), "    " + command + ")\n", "^        ;;");
    QCOMPARE(fx_Captured(zsh, "^ +'(?:\\(.*\\)'\\{-.,)?--([a-z-]+)"), options);
    QCOMPARE(fx_Captured(zsh, "'\\{-(.),"), letters);
}

void tst_pages::bashCompletesWhatHasBegun_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QByteArray>("completed");
    QTest::newRow("command") << QStringList{"minihost", "rec"} << QByteArray("record\n");
    QTest::newRow("program's option") << QStringList{"minihost", "--v"} << QByteArray("--version\n");
    QTest::newRow("option") << QStringList{"minihost", "record", "camera:", "--key"}
                            << QByteArray("--keyframe-rate\n");
    QTest::newRow("help") << QStringList{"minihost", "help", "exp"} << QByteArray("export\n");
    QTest::newRow("file") << QStringList{"minihost", "info", "re"} << QByteArray("\n"); // bash's own
}

void tst_pages::bashCompletesWhatHasBegun()
{
    QFETCH(QStringList, words);
    QProcess bash;
    bash.start("bash", QStringList{"-c",
                                   "source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _minihost; "
                                   "printf '%s\\n' \"${COMPREPLY[@]}\"",
                                   PAGES "/minihost.bash"} +
                           words);
    QVERIFY(bash.waitForFinished(-1));
    QTEST(bash.readAllStandardOutput(), "completed");
    QCOMPARE(bash.readAllStandardError(), QByteArray());
}

QTEST_GUILESS_MAIN(tst_pages)
#include "tst_pages.moc"
