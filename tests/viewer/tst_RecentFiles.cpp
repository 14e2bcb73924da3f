#include <QAction>
#include <QMenu>
#include <QSettings>
#include <QTest>
#include <QToolButton>

#include "Actions.h"
#include "RecentFiles.h"
#include "support/FileBytes.h"
#include "support/ViewerWindow.h"

class tst_RecentFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void keepsSixNewestFirst();
    void startPageOpensThem();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_RecentFiles::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_RecentFiles::keepsSixNewestFirst()
{
    QMenu menu;
    CxRecentFiles recent(&menu, nullptr);
    QVERIFY(recent.actions().isEmpty());
    QTemporaryDir const folder;
    for (char const* const name :
         {"0.h264", "1.h264", "2.h264", "3.h264", "4.h264", "5.h264", "6.h264", "3.h264"}) {
        QVERIFY(fx_WriteFile(folder.filePath(QLatin1String(name)), QByteArray("any")));
        recent.add(folder.filePath(QLatin1String(name)));
    }
    QStringList names;
    for (QAction* const action : recent.actions())
        names.append(action->text());
    QCOMPARE(names, (QStringList{"3.h264", "6.h264", "5.h264", "4.h264", "2.h264", "1.h264"}));
    QCOMPARE(recent.actions().first()->toolTip(), folder.filePath(QStringLiteral("3.h264")));
    QVERIFY(QFile::remove(folder.filePath(QStringLiteral("6.h264")))); // the missing are left out
    QMenu later;
    QCOMPARE(CxRecentFiles(&later, nullptr).actions()[1]->text(), QStringLiteral("5.h264"));
}

void tst_RecentFiles::startPageOpensThem()
{
    QString const other = m_fixture->record(QStringLiteral("other.h264"), 3);
    {
        CxViewerWindow viewer(*m_fixture);
        QVERIFY(viewer.open(m_recording));
        QVERIFY(viewer.open(other));
        QVERIFY(viewer.open(m_recording));
    }
    CxViewerWindow viewer(*m_fixture);
    QList<QAction*> const recent = viewer.window.findChild<CxActions*>()->recentMenu->actions();
    QCOMPARE(recent.size(), 2);
    QCOMPARE(recent[0]->text(), QStringLiteral("clip.h264"));
    QCOMPARE(recent[1]->text(), QStringLiteral("other.h264"));
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());
    for (auto* const button : viewer.child<QWidget>("startPage")->findChildren<QToolButton*>()) {
        if (button->text() == QLatin1String("other.h264"))
            QTest::mouseClick(button, Qt::LeftButton);
    }
    QTRY_COMPARE(viewer.window.player().info().count, 3);
}

QTEST_MAIN(tst_RecentFiles)
#include "tst_RecentFiles.moc"
