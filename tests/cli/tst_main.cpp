#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "support/FileBytes.h"
#include "support/Minihost.h"

/// minihost's command line: help, version, and every mistake told in one sentence with exit code 2.
class tst_main : public QObject
{
    Q_OBJECT

private slots:
    void helpAndVersionArePrinted_data();
    void helpAndVersionArePrinted();
    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();
    void wrongUsageTouchesNothing();
    void optionGivenTwiceIsWrongUsage_data();
    void optionGivenTwiceIsWrongUsage();
    void fileNameThatIsNoTextIsRefused();
    void unusablePluginIsNamed_data();
    void unusablePluginIsNamed();
    void unreadablePluginFolderIsToldWithTheCause();
    void pluginPathMayComeFromTheEnvironment();
    void fileNamesAreKeptWithoutALocale();
    void shortMemoryIsToldInOneSentence_data();
    void shortMemoryIsToldInOneSentence();
    void resultsThatDoNotArriveAreToldWithTheCause_data();
    void resultsThatDoNotArriveAreToldWithTheCause();
    void closedStreamsAreNotMistakenForFiles();
    void recordingGoesWhereStandardOutputDoes_data();
    void recordingGoesWhereStandardOutputDoes();
    void recordingDoesNotGoToATerminal();
    void jsonAndRecordingDoNotShareStandardOutput_data();
    void jsonAndRecordingDoNotShareStandardOutput();

private:
    QTemporaryDir m_recordings;
};

void tst_main::helpAndVersionArePrinted_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("start");

    QTest::newRow("--version") << QStringList{"--version"} << QByteArray("minihost 1.");
    QTest::newRow("--help") << QStringList{"--help"} << QByteArray("Runs the H.264 codec plug-in");
    QTest::newRow("-h") << QStringList{"-h"} << QByteArray("Runs the H.264 codec plug-in");
    QTest::newRow("help") << QStringList{"help"} << QByteArray("Runs the H.264 codec plug-in");
    QTest::newRow("record --help") << QStringList{"record", "--help"} << QByteArray("Records pictures");
    QTest::newRow("record -h") << QStringList{"record", "-h"} << QByteArray("Records pictures");
    QTest::newRow("help record") << QStringList{"help", "record"} << QByteArray("Records pictures");
}

void tst_main::helpAndVersionArePrinted()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, start);
    SxMinihostRun const run = fx_RunMinihost(arguments);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.startsWith(start), run.out);
    QCOMPARE(run.err, QByteArray());
    // Examples come before the usage line.
    if (run.out.contains("Usage:"))
        QVERIFY(run.out.indexOf("  minihost record camera:") < run.out.indexOf("Usage:"));
    for (QByteArray const& line : run.out.split('\n'))
        QVERIFY2(line.size() <= 90, line);
}

void tst_main::wrongUsageIsExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("sentence");
    QStringList const record{"record", "camera:", "out.h264"};

    QTest::newRow("no command") << QStringList{} << QByteArray("No command is given.");
    QTest::newRow("unknown command") << QStringList{"recrod"} << QByteArray("There is no command 'recrod'.");
    QTest::newRow("nothing to record")
        << QStringList{"record"} << QByteArray("Neither a source nor an output");
    QTest::newRow("no output") << QStringList{"record", "camera:"}
                               << QByteArray("'camera:' alone is not enough");
    QTest::newRow("forgotten output")
        << QStringList{"record", "a.png", "b.png"}
        << QByteArray("'b.png' cannot be the output: its name must end in .h264, .mp4, .mov or .mkv.");
    QTest::newRow("folder as output")
        << QStringList{"record", "camera:", "/tmp"} << QByteArray("'/tmp' cannot be the output");
    QTest::newRow("empty source") << QStringList{"record", "", "out.h264"}
                                  << QByteArray("A source has no name.");
    QTest::newRow("camera among files") << QStringList{"record", "camera:", "a.png", "out.h264"}
                                        << QByteArray("camera: cannot be mixed with other sources.");
    QTest::newRow("standard input twice") << QStringList{"record", "-", "-", "out.h264"}
                                          << QByteArray("Standard input (-) can be read only once");
    QTest::newRow("unknown option") << record + QStringList{"--fast"} << QByteArray("Unknown option 'fast'.");
    for (char const* command : {"record", "info", "export", "view", "verify", "plugins"})
        QTest::newRow(qPrintable(QStringLiteral("file like letters for %1").arg(QLatin1String(command))))
            << QStringList{command, "camera:", "-y.h264"} << QByteArray("Unknown option 'y.h264'.");
    QTest::newRow("missing value") << record + QStringList{"--quality"}
                                   << QByteArray("Missing value after '--quality'.");
    QTest::newRow("unknown reader") << QStringList{"record", "-", "out.h264", "--input-format", "rawvdieo"}
                                    << QByteArray("--input-format takes the name of a reader");
    QTest::newRow("reader for the camera") << record + QStringList{"--input-format", "rawvideo"}
                                           << QByteArray("--input-format is not for camera:");
    QTest::newRow("option without a value")
        << QStringList{"record", "-", "out.h264", "--input-option", "video_size"}
        << QByteArray("--input-option takes NAME=VALUE");
    QTest::newRow("size for a file") << QStringList{"record", "a.png", "out.h264", "--size", "64x48"}
                                     << QByteArray("--size is only for camera:, not for 'a.png'.");
    QTest::newRow("seed for a file") << QStringList{"record", "a.png", "out.h264", "--seed", "2"}
                                     << QByteArray("--seed is only for camera:");
    QTest::newRow("format for a file") << QStringList{"record", "a.png", "out.h264", "--format", "mono8"}
                                       << QByteArray("--format is only for camera:");
    QTest::newRow("bits for the camera")
        << record + QStringList{"--bits", "12"} << QByteArray("--bits is not for camera:");

    struct SxBadValue
    {
        char const* option;
        QStringList values;
        char const* expected;
    };
    QVector<SxBadValue> const bad{
        {"quality", {"0", "11", "-1", "5.5", "best", ""}, "a whole number from 1 to 10"},
        {"keyframe-rate", {"0", "101", "x"}, "a whole number from 1 to 100"},
        {"complexity", {"3", "highest"}, "one of low, medium, high"},
        {"profile", {"66", "ultra"}, "one of baseline, main,"},
        {"level", {"0", "1c", "4.3", "6", "52"}, "one of 1, 1b, 1.1,"},
        {"size",
         {"64", "15x64", "64x8193", "64*48", "64x48x3", "-64x48"},
         "WIDTHxHEIGHT, each from 16 to 8192"},
        {"frames", {"-1", "many"}, "a whole number from 0"},
        {"seed", {"-1", "x"}, "a whole number from 0"},
        {"format", {"rgb24", "MONO8"}, "one of mono8, mono10,"},
        {"bits", {"7", "17", "x"}, "a whole number from 8 to 16"},
    };
    for (SxBadValue const& entry : bad) {
        for (QString const& value : entry.values) {
            QString const option = QStringLiteral("--%1").arg(QLatin1String(entry.option));
            QTest::newRow(qPrintable(option + '=' + value))
                << record + QStringList{option + '=' + value}
                << QStringLiteral("%1 takes %2").arg(option, QLatin1String(entry.expected)).toUtf8();
        }
    }
}

void tst_main::wrongUsageIsExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, sentence);
    QTemporaryDir folder;
    SxMinihostRun const run = fx_RunMinihost(arguments, QByteArray(), folder.path());
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.startsWith("error: " + sentence), run.err);
    QCOMPARE(run.err.count('\n'), 1);
    QVERIFY(run.err.endsWith("--help.\n"));
    QCOMPARE(run.out, QByteArray());
}

void tst_main::wrongUsageTouchesNothing()
{
    QTemporaryDir folder;
    QCOMPARE(fx_RunMinihost({"record", "camera:", "out.h264", "--level", "9"}, QByteArray(), folder.path())
                 .exitCode,
             2);
    QVERIFY(!QFile::exists(folder.filePath("out.h264")));
}

void tst_main::optionGivenTwiceIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("option");
    QTest::newRow("export") << QStringList{"export", "in.h264", "--frames", "1", "--frames", "2"}
                            << QByteArray("--frames");
    QTest::newRow("both forms") << QStringList{"export", "in.h264", "-o", "a.png", "--output", "b.png"}
                                << QByteArray("-o");
}

void tst_main::optionGivenTwiceIsWrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, option);
    SxMinihostRun const run = fx_RunMinihost(arguments);
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.startsWith("error: " + option + " is given twice."), run.err);
}

void tst_main::fileNameThatIsNoTextIsRefused()
{
    QTemporaryDir folder;
    SxMinihostRun const run = fx_RunMinihostInShell(QStringLiteral("\"$@\" \"$(printf 'gr\\374n.h264')\""),
                                                    {"record", "camera:", "--frames", "1"}, folder.path());
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains("is not in this system's encoding"), run.err);
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_main::unusablePluginIsNamed_data()
{
    QTest::addColumn<QString>("pluginPath");
    QTest::addColumn<QByteArray>("cause");
    QTest::newRow("missing") << "/no/such/plugin.so"
                             << QByteArray("/no/such/plugin.so: there is no such plug-in");
    QTest::newRow("empty folder") << QStringLiteral("%1")
                                  << QByteArray("the folder holds no plug-in (libtvp*.so).");
    QTest::newRow("no library") << QStringLiteral("%1/text.so")
                                << QByteArray("the plug-in cannot be loaded: ");
    QTest::newRow("no plug-in") << QStringLiteral(CORE_LIBRARY)
                                << QByteArray("the plug-in cannot be loaded: ");
}

void tst_main::unusablePluginIsNamed()
{
    QFETCH(QString, pluginPath);
    QFETCH(QByteArray, cause);
    QTemporaryDir folder;
    QFile text(folder.filePath("text.so"));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no library") > 0);
    text.close();
    QString const place = pluginPath.contains('%') ? pluginPath.arg(folder.path()) : pluginPath;
    SxMinihostRun const run =
        fx_RunMinihost({"record", "camera:", folder.filePath("out.h264"), "--plugin-path", place});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.startsWith("error: ") && run.err.contains(cause), run.err);
    QVERIFY(!QFile::exists(folder.filePath("out.h264")));
}

void tst_main::unreadablePluginFolderIsToldWithTheCause()
{
    QTemporaryDir folder;
    // Standard streams and Qt's own take some; with fewer the loader of libraries gives up itself.
    int refusals = 0;
    for (int const descriptors : {4, 5, 6}) {
        SxMinihostRun const run = fx_RunMinihostInShell(
            QStringLiteral("ulimit -n %1; exec \"$@\"").arg(descriptors), {"info", "in.h264"}, folder.path());
        QVERIFY2(!run.err.contains("holds no plug-in"), run.err);
        refusals += run.err.contains("the folder cannot be searched for plug-ins: Too many open files.\n");
    }
    if (refusals == 0)
        QSKIP("No number of descriptors stops only the search.", );
}

void tst_main::fileNamesAreKeptWithoutALocale()
{
    QString const name = QStringLiteral("/no/such/gr\u00FC\u00DFe.h264");
    SxMinihostRun const expected = fx_RunMinihost({"info", name});
    QVERIFY2(expected.err.contains(name.toUtf8()), expected.err);
    QByteArray const locale = qgetenv("LC_ALL");
    QVERIFY(qputenv("LC_ALL", "C"));
    SxMinihostRun const named = fx_RunMinihost({"info", name});
    QVERIFY(qunsetenv("LC_ALL"));
    QVERIFY(qputenv("LC_CTYPE", "C"));
    SxMinihostRun const unnamed = fx_RunMinihost({"info", name});
    qunsetenv("LC_CTYPE");
    qputenv("LC_ALL", locale);
    QCOMPARE(named.err, expected.err);
    QCOMPARE(unnamed.err, expected.err);
}

void tst_main::pluginPathMayComeFromTheEnvironment()
{
    QTemporaryDir folder;
    QStringList const arguments{"record",   "camera:", folder.filePath("out.h264"), "--size", "64x48",
                                "--frames", "1"};
    QVERIFY(qputenv("MINIHOST_PLUGIN_PATH", "/no/such/folder"));
    SxMinihostRun const misled = fx_RunMinihost(arguments);
    // The option goes first.
    SxMinihostRun const led = fx_RunMinihost(arguments + QStringList{"--plugin-path", PLUGIN_FILE});
    qunsetenv("MINIHOST_PLUGIN_PATH");
    QCOMPARE(misled.exitCode, 1);
    QVERIFY2(misled.err.contains("/no/such/folder"), misled.err);
    QVERIFY2(led.exitCode == 0, led.err);
}

void tst_main::shortMemoryIsToldInOneSentence_data()
{
    for (char const* name : {"in.h264", "old.h264", "large.h264", "4096x3000.h264"}) {
        QString const size = name == QByteArray("4096x3000.h264") ? "4096x3000" : "320x240";
        SxMinihostRun const made = fx_RunMinihost(
            {"record", "camera:", name, "--size", size, "--frames", "2"}, QByteArray(), m_recordings.path());
        QVERIFY2(made.exitCode == 0, made.err);
    }
    QVERIFY(
        QFile::resize(m_recordings.filePath("large.h264"), qint64{4} << 30)); // a hole, which takes no place
    QTest::addColumn<QStringList>("arguments");
    QStringList const record{"record", "-q", "--overwrite", "--frames", "2"};
    QTest::newRow("record") << record + QStringList{"camera:", "out.h264"};
    QTest::newRow("record large pictures")
        << record + QStringList{"camera:", "--size", "4096x3000", "out.h264"};
    QTest::newRow("record over a file") << record + QStringList{"camera:", "old.h264"};
    QTest::newRow("record a file") << record + QStringList{"in.h264", "out.h264"};
    QTest::newRow("info") << QStringList{"info", "in.h264"};
    QTest::newRow("info of a large file") << QStringList{"info", "large.h264"};
    QTest::newRow("verify") << QStringList{"verify", "-q", "in.h264"};
    QTest::newRow("verify of a large file") << QStringList{"verify", "-q", "large.h264"};
    QTest::newRow("verify of large pictures") << QStringList{"verify", "-q", "4096x3000.h264"};
    QTest::newRow("export of large pictures")
        << QStringList{"export", "4096x3000.h264", "--frames", "all", "--hash", "md5", "--keep-going"};
    QTest::newRow("export") << QStringList{"export", "in.h264", "--frames", "0", "--hash", "md5"};
    QTest::newRow("--version") << QStringList{"--version"};
}

void tst_main::shortMemoryIsToldInOneSentence()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer takes more address space than there is with a limit.", );
#endif
    QFETCH(QStringList, arguments);
    int refusals = 0;
    for (int const kilobytes : {280000, 300000, 320000, 360000, 420000, 1000000}) {
        SxMinihostRun const run = fx_RunMinihostInShell(
            QStringLiteral("ulimit -v %1; exec \"$@\"").arg(kilobytes), arguments, m_recordings.path());
        if (run.exitCode == 0 || run.exitCode == 127) // which the loader of libraries says itself
            continue;
        ++refusals;
        QByteArray const which = QByteArray::number(kilobytes) + " kB: " + run.err;
        QVERIFY2(run.err.count('\n') == 1 && run.err.startsWith("error: "), which);
        QVERIFY2(run.err.contains("ot enough memory"), which);
        QVERIFY2(run.exitCode == 1, which + QByteArray::number(run.exitCode));
    }
    // The other files may be small enough for what a limit leaves.
    QVERIFY(refusals > 0 || !arguments.contains("large.h264"));
}

void tst_main::resultsThatDoNotArriveAreToldWithTheCause_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("--version") << QStringList{"--version"};
    QTest::newRow("--help") << QStringList{"--help"};
    for (char const* command : {"record", "info", "export", "view", "verify", "plugins"})
        QTest::newRow(command) << QStringList{command, "--help"};
    QTest::newRow("record --json") << QStringList{"record", "camera:", "json.h264", "--json", "--size",
                                                  "64x48",  "-q",      "--frames",  "2",      "--overwrite"};
    QTest::newRow("info") << QStringList{"info", "in.h264"};
    QTest::newRow("info --json") << QStringList{"info", "in.h264", "--json"};
    QTest::newRow("verify --json") << QStringList{"verify", "in.h264", "--json", "-q"};
}

void tst_main::resultsThatDoNotArriveAreToldWithTheCause()
{
    QFETCH(QStringList, arguments);
    QTemporaryDir folder;
    QStringList const recording{"record", "camera:", "in.h264", "--size", "64x48", "--frames", "2"};
    QCOMPARE(fx_RunMinihost(recording, QByteArray(), folder.path()).exitCode, 0);

    SxMinihostRun const full = fx_RunMinihostInShell("\"$@\" >/dev/full", arguments, folder.path());
    QCOMPARE(full.err, QByteArray("error: Standard output: No space left on device.\n"));
    QCOMPARE(full.exitCode, 5);
    SxMinihostRun const closed = fx_RunMinihostInShell("\"$@\" >&-", arguments, folder.path());
    QCOMPARE(closed.err, QByteArray("error: Standard output: Bad file descriptor.\n"));
    QCOMPARE(closed.exitCode, 5);
}

void tst_main::closedStreamsAreNotMistakenForFiles()
{
    QTemporaryDir folder;
    QStringList const recording{"record", "camera:", "out.h264", "--size", "64x48", "--frames", "2"};
    QCOMPARE(fx_RunMinihostInShell("\"$@\" <&- >&- 2>&-", recording, folder.path()).exitCode, 0);
    QCOMPARE(fx_RunMinihost({"verify", "out.h264"}, QByteArray(), folder.path()).exitCode, 0);
    QFile recorded(folder.filePath("out.h264"));
    QVERIFY(recorded.open(QIODevice::ReadOnly));
    QVERIFY(!recorded.readAll().contains("pictures")); // what was said is in no file

    SxMinihostRun const input =
        fx_RunMinihostInShell("\"$@\" <&-", {"record", "-", "none.h264"}, folder.path());
    QVERIFY2(input.err.contains("standard input: "), input.err);
    QVERIFY(input.exitCode != 0 && input.exitCode < 128);
}

void tst_main::jsonAndRecordingDoNotShareStandardOutput_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("pipe") << "\"$@\" /dev/stdout | cat; exit 2";
    QTest::newRow("pipe by its number") << "\"$@\" /proc/self/fd/1 | cat; exit 2";
    QTest::newRow("file") << "\"$@\" out.h264 --overwrite >out.h264";
    QTest::newRow("file by its number")
        << "ln -s /proc/self/fd/1 one.h264; \"$@\" one.h264 --overwrite >out.h264";
}

void tst_main::jsonAndRecordingDoNotShareStandardOutput()
{
    QFETCH(QString, script);
    QTemporaryDir folder;
    SxMinihostRun const run =
        fx_RunMinihostInShell(script, {"record", "camera:", "--json", "--frames", "2"}, folder.path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.err, QByteArray("error: --json and the recording cannot both go to standard output. See "
                                 "minihost record --help.\n"));
    QCOMPARE(run.out, QByteArray());
}

void tst_main::recordingGoesWhereStandardOutputDoes_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("script");
    for (QString const output : {"-", "/dev/stdout"}) {
        QTest::addRow("%s, a file", qPrintable(output)) << output << "\"$@\" >out";
        QTest::addRow("%s, behind what is in a file", qPrintable(output))
            << output << "echo head >out; \"$@\" >>out";
        QTest::addRow("%s, a pipe", qPrintable(output)) << output << "\"$@\" | cat >out";
    }
}

void tst_main::recordingGoesWhereStandardOutputDoes()
{
    QFETCH(QString, output);
    QFETCH(QString, script);
    QTemporaryDir folder;
    QStringList const arguments{"record", "camera:", "--size", "64x48", "--frames", "3", "-q"};
    QCOMPARE(fx_RunMinihost(arguments + QStringList{"named.h264"}, QByteArray(), folder.path()).exitCode, 0);
    SxMinihostRun const run = fx_RunMinihostInShell(script, arguments + QStringList{output}, folder.path());
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.err, QByteArray());
    QByteArray const head = script.contains("head") ? "head\n" : "";
    QByteArray const named = fx_FileBytes(folder.filePath("named.h264"));
    QVERIFY(!named.isEmpty());
    QVERIFY(fx_FileBytes(folder.filePath("out")) == head + named);
}

void tst_main::recordingDoesNotGoToATerminal()
{
    QTemporaryDir folder;
    SxMinihostRun const run =
        fx_RunMinihostInShell("exec script -qec \"$*\" /dev/null", {"record", "camera:", "-"}, folder.path());
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(
        run.out.contains("Standard output is a terminal: send it to a program (| ffplay -) or name a file."),
        run.out);
}

QTEST_GUILESS_MAIN(tst_main)
#include "tst_main.moc"
