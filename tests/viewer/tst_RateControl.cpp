#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTest>

#include "support/FileBytes.h"
#include "support/ViewerWindow.h"

class tst_RateControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { QSettings().clear(); }

    void everyTimeFollowsTheRate();
    void rateIsKeptForTheNextTime();
    void rateCanBeAssumedAgain();
    void whatIsNoRateIsRefused_data();
    void whatIsNoRateIsRefused();
    void saysWhyItIsNotNoted();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_RateControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 20);
    QVERIFY(!m_recording.isEmpty());
}

void tst_RateControl::init() { QFile::remove(fx_SidecarName(m_recording)); }

/// Opens the dialog with its keys and types \p text into it.
static QComboBox* fx_TypeRate(CxViewerWindow& viewer, QString const& text)
{
    viewer.key(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    auto* const box = viewer.child<QComboBox>("rateOfRecording");
    if (box) {
        box->lineEdit()->selectAll();
        QTest::keyClicks(box->lineEdit(), text);
    }
    return box;
}

static bool fx_SetRate(CxViewerWindow& viewer, QString const& text)
{
    QComboBox* const box = fx_TypeRate(viewer, text);
    if (!box)
        return false;
    QTest::keyClick(box->lineEdit(), Qt::Key_Return);
    if (!QTest::qWaitFor([&] { return !viewer.child<QDialog>("rateDialog"); }))
        return false;
    QApplication::setActiveWindow(&viewer.window); // as a window manager does
    return true;
}

void tst_RateControl::everyTimeFollowsTheRate()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(viewer.text("notes"), QStringLiteral("30 a second (assumed)"));
    viewer.window.player().seek(10);
    QTRY_COMPARE(viewer.text("time"), QStringLiteral("0:00:00.333"));
    QVERIFY(fx_SetRate(viewer, QStringLiteral("12,5")));
    QCOMPARE(viewer.text("time"), QStringLiteral("0:00:00.800"));
    QCOMPARE(viewer.text("notes"), QStringLiteral("12.5 a second"));
    QCOMPARE(viewer.window.player().info().fps, 12.5);
    QCOMPARE(viewer.window.player().shownNumber(), 10); // where it was
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("Noted: 12.5 pictures a second."));
    viewer.key(Qt::Key_I); // a part is as long as the rate says
    QVERIFY(viewer.window.statusBar()->currentMessage().endsWith(QStringLiteral("0:00:00.800")));
}

void tst_RateControl::rateIsKeptForTheNextTime()
{
    {
        CxViewerWindow viewer(*m_fixture);
        QVERIFY(viewer.open(m_recording));
        QVERIFY(fx_SetRate(viewer, QStringLiteral("30000/1001")));
    }
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(viewer.text("notes"), QStringLiteral("29.97 a second"));
    fx_TypeRate(viewer, QStringLiteral("2"));
    QCOMPARE(viewer.text("lengthAtRate"), QStringLiteral("0:00:10.000"));
}

void tst_RateControl::rateCanBeAssumedAgain()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(fx_SetRate(viewer, QStringLiteral("25")));
    QVERIFY(QFile::exists(fx_SidecarName(m_recording)));
    QVERIFY(fx_SetRate(viewer, QStringLiteral("assume 30")));
    QCOMPARE(viewer.text("notes"), QStringLiteral("30 a second (assumed)"));
    QVERIFY(!QFile::exists(fx_SidecarName(m_recording)));
}

void tst_RateControl::whatIsNoRateIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (char const* const text : {"", "0", "fast", "-5", "1/0", "1000000"})
        QTest::newRow(text) << text;
}

void tst_RateControl::whatIsNoRateIsRefused()
{
    QFETCH(QString, text);
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QComboBox* const box = fx_TypeRate(viewer, text);
    QVERIFY(box);
    if (text.isEmpty())
        QTest::keyClick(box->lineEdit(), Qt::Key_Delete);
    QVERIFY2(viewer.text("lengthAtRate").startsWith(QStringLiteral("no rate")),
             qPrintable(viewer.text("lengthAtRate")));
    QTest::keyClick(box->lineEdit(), Qt::Key_Return);
    QVERIFY(viewer.child<QDialog>("rateDialog")->isVisible());
    QVERIFY(!QFile::exists(fx_SidecarName(m_recording)));
}

void tst_RateControl::saysWhyItIsNotNoted()
{
    QVERIFY(fx_WriteFile(fx_SidecarName(m_recording), QByteArray("a person's own")));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(fx_SetRate(viewer, QStringLiteral("25")));
    QCOMPARE(viewer.bar->text(),
             QStringLiteral("The frame rate could not be noted beside “clip.h264”, so it stays as it was."));
    QVERIFY(viewer.bar->details().contains(QStringLiteral("is not minihost's")));
    QCOMPARE(viewer.text("notes"), QStringLiteral("30 a second (assumed)"));
}

QTEST_MAIN(tst_RateControl)
#include "tst_RateControl.moc"
