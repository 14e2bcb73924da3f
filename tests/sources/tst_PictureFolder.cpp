#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>

#include "PictureFolder.h"
#include "support/FileBytes.h"

/// Folders and patterns as sources: which files they stand for, and in which order.
class tst_PictureFolder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void namesAreOrderedAsPeopleCount();
    void folderHasItsPicturesAndNothingElse();
    void emptyAndMissingFoldersAreObstacles_data();
    void emptyAndMissingFoldersAreObstacles();
    void nameThatIsNoTextIsAnObstacle();
    void patternsAreTold_data();
    void patternsAreTold();
    void patternHasTheFilesThatItMakes_data();
    void patternHasTheFilesThatItMakes();
    void missingNumbersAreNamed();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    void makeFiles(QStringList const& names) const;
    QStringList namesOf(SxPictureFiles const& found) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_PictureFolder::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_PictureFolder::makeFiles(QStringList const& names) const
{
    for (QString const& name : names)
        QVERIFY2(fx_WriteFile(path(name), "x"), qPrintable(name));
}

/// The files' names within the folder.
QStringList tst_PictureFolder::namesOf(SxPictureFiles const& found) const
{
    QStringList names;
    for (QString const& file : found.files)
        names += QDir(m_folder->path()).relativeFilePath(file);
    return names;
}

void tst_PictureFolder::namesAreOrderedAsPeopleCount()
{
    QStringList const ordered{" 1",
                              "-1",
                              "01",
                              "1",
                              "1 a",
                              "1a",
                              "002",
                              "2",
                              "10",
                              "A",
                              "a",
                              "a1b2",
                              "a1b10",
                              "a2b1",
                              "a9",
                              "a12345678901234567890",
                              "a12345678901234567891",
                              "aa",
                              "b",
                              "shot",
                              "shot.png",
                              "shot2.png",
                              "shot_1",
                              "shot_02",
                              "shot_2",
                              "shot_10",
                              "ä1",
                              "ä2",
                              "ä10"};
    for (int i = 0; i < ordered.size(); ++i) {
        for (int j = 0; j < ordered.size(); ++j)
            QVERIFY2(fx_IsNaturallyBefore(ordered[i], ordered[j]) == (i < j),
                     qPrintable(ordered[i] + " and " + ordered[j]));
    }
}

void tst_PictureFolder::folderHasItsPicturesAndNothingElse()
{
    QStringList const pictures{"a b.png", "a%d.tif", "a\nb.PNG", "shot_2.pgm", "shot_10.jpg", "ä.png"};
    makeFiles(pictures);
    makeFiles({".hidden.png", "Thumbs.db", "notes.txt", "png"});
    QVERIFY(QDir(m_folder->path()).mkdir("more.png"));
    makeFiles({"more.png/inside.png"});
    SxPictureFiles const found = fx_PicturesInFolder(m_folder->path());
    QCOMPARE(found.obstacle, QString());
    QStringList expected = pictures;
    std::sort(expected.begin(), expected.end(), fx_IsNaturallyBefore);
    QCOMPARE(namesOf(found), expected);
    QVERIFY2(found.note.contains("4 things that are no pictures"), qPrintable(found.note));
}

void tst_PictureFolder::emptyAndMissingFoldersAreObstacles_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("says");
    QTest::newRow("empty") << QStringList() << "there is no picture in this folder.";
    QTest::newRow("no picture") << QStringList{"notes.txt"} << "there is no picture in this folder.";
}

void tst_PictureFolder::emptyAndMissingFoldersAreObstacles()
{
    QFETCH(QStringList, files);
    QFETCH(QString, says);
    makeFiles(files);
    SxPictureFiles const found = fx_PicturesInFolder(m_folder->path());
    QCOMPARE(found.obstacle, m_folder->path() + ": " + says);
    QVERIFY(!fx_PicturesInFolder(path("missing")).obstacle.isEmpty());
}

/// Nobody could be told which picture is missing.
void tst_PictureFolder::nameThatIsNoTextIsAnObstacle()
{
    makeFiles({"a.png"});
    FILE* const file = fopen((m_folder->path().toLocal8Bit() + "/b\xff.png").constData(), "w");
    QVERIFY(file);
    fclose(file);
    SxPictureFiles const found = fx_PicturesInFolder(m_folder->path());
    QVERIFY2(found.obstacle.contains("is no UTF-8 text"), qPrintable(found.obstacle));
}

void tst_PictureFolder::patternsAreTold_data()
{
    QTest::addColumn<bool>("isPattern");
    for (char const* name : {"%d.png", "shot_%05d.png", "%%%d%%", "a%09d", "dir%/b%d.png"})
        QTest::newRow(name) << true;
    for (char const* name : {"shot.png", "%", "%s.png", "%5d.png", "%00d.png", "%010d.png", "%d_%d.png",
                             "100%.png", "%%d.png", "%d/a.png", ""})
        QTest::newRow(name) << false;
}

void tst_PictureFolder::patternsAreTold()
{
    QFETCH(bool, isPattern);
    QString const name = QString::fromUtf8(QTest::currentDataTag());
    QCOMPARE(fx_IsPicturePattern(name), isPattern);
    if (isPattern && !name.contains('/')) {
        makeFiles({name});
        QVERIFY(!fx_IsPicturePattern(path(name))); // there is a file of that name
    }
}

void tst_PictureFolder::patternHasTheFilesThatItMakes_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QStringList>("there");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("%d") << "s%d.png" << QStringList{"s10.png", "s2.png",  "s02.png", "s.png",
                                                    "t1.png",  "s1.pngx", "xs1.png", "s3.png\n"}
                        << QStringList{"s2.png", "s10.png"};
    QTest::newRow("%03d") << "s%03d.png" << QStringList{"s000.png", "s1000.png", "s0999.png",
                                                        "s999.png", "s1.png",    "s0001.png"}
                          << QStringList{"s000.png", "s999.png", "s1000.png"};
    QTest::newRow("signs with a meaning elsewhere")
        << "a.b(%%)%01d[x]" << QStringList{"a.b(%)7[x]", "axb(%)7[x]"} << QStringList{"a.b(%)7[x]"};
    QTest::newRow("whatever the end") << "%d" << QStringList{"5", "55", "a5"} << QStringList{"5", "55"};
    QTest::newRow("numbers in what stands around")
        << "%%1%d" << QStringList{"%17", "%27"} << QStringList{"%17"};
}

void tst_PictureFolder::patternHasTheFilesThatItMakes()
{
    QFETCH(QString, pattern);
    QFETCH(QStringList, there);
    QFETCH(QStringList, expected);
    makeFiles(there);
    QVERIFY(fx_IsPicturePattern(path(pattern)));
    SxPictureFiles const found = fx_PicturesOfPattern(path(pattern));
    QCOMPARE(found.obstacle, QString());
    QCOMPARE(namesOf(found), expected);
}

void tst_PictureFolder::missingNumbersAreNamed()
{
    makeFiles({"s3.png", "s4.png", "s6.png", "s10.png"});
    SxPictureFiles const found = fx_PicturesOfPattern(path("s%d.png"));
    QCOMPARE(found.gap, path("s%d.png") + ": 4 numbers from 3 to 10 are missing: 5, 7-9.");
    makeFiles({"s5.png", "s7.png", "s9.png"});
    QCOMPARE(fx_PicturesOfPattern(path("s%d.png")).gap,
             path("s%d.png") + ": 1 number from 3 to 10 is missing: 8.");
    makeFiles({"t3.png", "t4.png"});
    QCOMPARE(fx_PicturesOfPattern(path("t%d.png")).gap, QString());
    QVERIFY(!fx_PicturesOfPattern(path("u%d.png")).obstacle.isEmpty());
    QVERIFY(!fx_PicturesOfPattern(path("missing/u%d.png")).obstacle.isEmpty());
}

QTEST_GUILESS_MAIN(tst_PictureFolder)
#include "tst_PictureFolder.moc"
