#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <unistd.h>

#include "CodecOptions.h"
#include "support/RecordDialogUser.h"
#include "support/ViewerWindow.h"

class tst_RecordDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void offersSaversFormats();
    void changedOptionsReachTheStream();
    void optionsAreRemembered();
    void defaultButtonUndoesRememberedOptions();
    void refusesSourceAsTarget_data();
    void refusesSourceAsTarget();
    void refusesVideoBeingShownAsTarget();
    void replacesNothingByEnterAlone();
    void tellsOfShrinkingByLevel();
    void tellsOfOddSize();
    void refusesMissingFolder();
    void refusesEmptyRange();
    void addsSuffix();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    std::unique_ptr<CxViewerWindow> m_viewer;
};

void tst_RecordDialog::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_RecordDialog::init()
{
    m_viewer = std::make_unique<CxViewerWindow>(*m_fixture);
    QVERIFY(m_viewer->isShown);
}

void tst_RecordDialog::cleanup()
{
    m_viewer.reset();
    QSettings().clear();
    fx_SetCodecOptions(kFourCCH264, {});
}

void tst_RecordDialog::offersSaversFormats()
{
    m_viewer->openCamera();
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    auto* const format = user.child<QComboBox>("format");
    QCOMPARE(format->count(), 1);
    QCOMPARE(format->itemText(0), QStringLiteral("H.264 file (*.h264)"));
    QVERIFY(user.child<QLineEdit>("outputFile")->text().endsWith(QStringLiteral(".h264")));
    QVERIFY(user.child<QSlider>("slH264Quality")->isVisible());
    QVERIFY(!user.child<QComboBox>("cbH264LevelIdc")->isVisible());
    user.click("chkH264Advanced");
    QVERIFY(user.child<QComboBox>("cbH264LevelIdc")->isVisible());
    QCOMPARE(user.child<QSpinBox>("limit")->value(), 0);
    QVERIFY(!user.child<QSpinBox>("first"));
}

void tst_RecordDialog::changedOptionsReachTheStream()
{
    QString const fileName = m_fixture->path(QStringLiteral("changed.h264"));
    m_viewer->openCamera();
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    user.setFile(fileName);
    user.setNumber("limit", 12);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    user.click("chkH264Advanced");
    user.setNumber("spinH264KeyFramerate", 4);
    auto* const level = user.child<QComboBox>("cbH264LevelIdc");
    level->setFocus();
    while (level->currentText() != QLatin1String("2"))
        QTest::keyClick(level, Qt::Key_Up);
    user.click("start");
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    QVERIFY2(m_viewer->bar->text().contains(QStringLiteral("12 pictures saved")) ||
                 m_viewer->bar->text().contains(QStringLiteral("12 picture(s) saved")),
             qPrintable(m_viewer->bar->text()));
    QCOMPARE(CxViewerFixture::pictures(fileName), 12);
    QCOMPARE(CxViewerFixture::level(fileName), 20);
    QCOMPARE(CxViewerFixture::keyFrames(fileName), (QVector<int>{0, 4, 8}));
}

void tst_RecordDialog::optionsAreRemembered()
{
    QString const fileName = m_fixture->path(QStringLiteral("remembered.h264"));
    m_viewer->openCamera();
    {
        CxRecordDialogUser const user(m_viewer->window);
        QVERIFY(user.isShown);
        user.setFile(fileName);
        user.setNumber("limit", 2);
        QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_Home);
        user.click("chkH264Advanced");
        user.setNumber("spinH264KeyFramerate", 33);
        user.click("start");
    }
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty()); // with or without every picture, at that quality
    for (bool const isRestarted : {false, true}) {
        if (isRestarted) { // as after starting the program anew
            fx_SetCodecOptions(kFourCCH264, {});
            init();
            m_viewer->openCamera();
        }
        CxRecordDialogUser const user(m_viewer->window);
        QVERIFY(user.isShown);
        QCOMPARE(user.child<QSlider>("slH264Quality")->value(), 1);
        QCOMPARE(user.child<QSpinBox>("spinH264KeyFramerate")->value(), 33);
        QVERIFY(user.child<QCheckBox>("chkH264Advanced")->isChecked());
        QVERIFY(user.child<QSpinBox>("spinH264KeyFramerate")->isVisible());
        QCOMPARE(QFileInfo(user.child<QLineEdit>("outputFile")->text()).absolutePath(),
                 QFileInfo(fileName).absolutePath());
        QTest::keyClick(user.dialog, Qt::Key_Escape);
        QTRY_VERIFY(!m_viewer->window.findChild<CxRecordDialog*>());
    }
}

void tst_RecordDialog::defaultButtonUndoesRememberedOptions()
{
    QSettings().setValue(QStringLiteral("record/h264"),
                         QVariantMap{{"h264_quality", 9}, {"h264_level_idc", 10}});
    QString const fileName = m_fixture->path(QStringLiteral("defaults.h264"));
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QCOMPARE(user.child<QSlider>("slH264Quality")->value(), 9);
    user.click("btnDefault");
    user.setFile(fileName);
    user.click("start");
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::level(fileName), 52);
    QCOMPARE(CxViewerFixture::keyFrames(fileName).mid(0, 3), (QVector<int>{0, 5, 10}));
}

void tst_RecordDialog::refusesSourceAsTarget_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("itself") << "clip.h264";
    QTest::newRow("hard link") << "hard.h264";
    QTest::newRow("symbolic link") << "soft.h264";
}

void tst_RecordDialog::refusesSourceAsTarget()
{
    QFETCH(QString, name);
    QString const target = m_fixture->path(name);
    QByteArray const from = QFile::encodeName(m_recording), to = QFile::encodeName(target);
    if (name.startsWith(QLatin1String("hard")))
        QCOMPARE(link(from, to), 0);
    if (name.startsWith(QLatin1String("soft")))
        QCOMPARE(symlink(from, to), 0);
    QVERIFY(m_viewer->open(m_recording));
    qint64 const size = QFileInfo(m_recording).size();
    CxRecordDialogUser const user(m_viewer->window);
    user.setFile(target);
    user.click("start");
    QVERIFY(user.dialog->isVisible());
    QVERIFY2(user.note().contains(QStringLiteral("being read")), qPrintable(user.note()));
    QCOMPARE(QFileInfo(m_recording).size(), size);
}

void tst_RecordDialog::refusesVideoBeingShownAsTarget()
{
    QString const video = m_fixture->path(QStringLiteral("video.h264"));
    QVERIFY(QFile::copy(m_recording, video));
    qint64 const size = QFileInfo(video).size();
    m_viewer->window.openLive(QStringLiteral("video"), fx_Camera(0, "bgr24"), video);
    CxRecordDialogUser const user(m_viewer->window);
    user.setFile(video);
    user.click("start");
    QVERIFY(user.dialog->isVisible());
    QVERIFY2(user.note().contains(QStringLiteral("being read")), qPrintable(user.note()));
    QCOMPARE(QFileInfo(video).size(), size);
}

void tst_RecordDialog::replacesNothingByEnterAlone()
{
    QString const fileName = m_fixture->path(QStringLiteral("precious.h264"));
    QVERIFY(QFile::copy(m_recording, fileName));
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    user.setFile(fileName);
    bool isAsked = false;
    QTimer::singleShot(0, user.dialog, [&] { // the question runs a loop of its own
        isAsked = true;
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return);
    });
    user.click("start");
    QVERIFY(isAsked);
    QVERIFY(user.dialog->isVisible());
    QCOMPARE(QFileInfo(fileName).size(), QFileInfo(m_recording).size());
}

void tst_RecordDialog::tellsOfShrinkingByLevel()
{
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QVERIFY(user.child<QLabel>("size")->isHidden());
    user.click("chkH264Advanced");
    auto* const level = user.child<QComboBox>("cbH264LevelIdc");
    level->setFocus();
    while (level->currentText() != QLatin1String("1"))
        QTest::keyClick(level, Qt::Key_Up);
    QVERIFY(user.child<QLabel>("size")->isVisible());
    QString const told = user.child<QLabel>("size")->text();
    QVERIFY2(told.contains(QStringLiteral("instead of 320 × 180: level 1 allows no larger ones.")),
             qPrintable(told));
    QVERIFY(fx_CodecOptions(kFourCCH264).value(QStringLiteral("h264_level_idc")) != 10); // only looked at
    user.setFile(m_fixture->path(QStringLiteral("small.h264")));
    user.click("start");
    QTRY_VERIFY(!m_viewer->bar->text().isEmpty());
    QVERIFY2(m_viewer->bar->text().contains(told), qPrintable(m_viewer->bar->text()));
}

void tst_RecordDialog::tellsOfOddSize()
{
    m_viewer->window.openLive(QStringLiteral("camera"), [](std::atomic<bool> const*) {
        SxTestCameraOptions options;
        options.width = 161;
        options.height = 121;
        options.frames = 0;
        return std::make_unique<CxTestCamera>(options);
    });
    QTRY_VERIFY(!m_viewer->view->picture().image.isNull());
    CxRecordDialogUser const user(m_viewer->window);
    QVERIFY(user.isShown);
    QString const told =
        QStringLiteral("Pictures are saved as 160 × 120 instead of 161 × 121: a recording's sides are even.");
    QCOMPARE(user.child<QLabel>("size")->text(), told);
    user.setFile(m_fixture->path(QStringLiteral("odd.h264")));
    user.setNumber("limit", 2);
    user.click("start");
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    QVERIFY2(m_viewer->bar->text().contains(told), qPrintable(m_viewer->bar->text()));
}

void tst_RecordDialog::refusesMissingFolder()
{
    m_viewer->openCamera();
    CxRecordDialogUser const user(m_viewer->window);
    user.setFile(m_fixture->path(QStringLiteral("nowhere/file.h264")));
    user.click("start");
    QVERIFY(user.dialog->isVisible());
    QVERIFY2(user.note().contains(QStringLiteral("There is no folder")), qPrintable(user.note()));
}

void tst_RecordDialog::refusesEmptyRange()
{
    QVERIFY(m_viewer->open(m_recording));
    CxRecordDialogUser const user(m_viewer->window);
    auto* const start = user.child<QPushButton>("start");
    QVERIFY(start->isEnabled());
    user.setNumber("first", 20);
    user.setNumber("last", 19);
    QVERIFY(!start->isEnabled());
    user.setNumber("last", 20);
    QVERIFY(start->isEnabled());
    user.child<QLineEdit>("outputFile")->clear();
    QVERIFY(!start->isEnabled());
}

void tst_RecordDialog::addsSuffix()
{
    m_viewer->openCamera();
    CxRecordDialogUser const user(m_viewer->window);
    user.setFile(m_fixture->path(QStringLiteral("plain")));
    user.setNumber("limit", 1);
    user.click("start");
    QTRY_VERIFY(m_viewer->bar->text().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::pictures(m_fixture->path(QStringLiteral("plain.h264"))), 1);
}

QTEST_MAIN(tst_RecordDialog)
#include "tst_RecordDialog.moc"
