#include <QAction>
#include <QDialog>
#include <QSettings>
#include <QTableWidget>
#include <QTest>

#include "Actions.h"
#include "support/ViewerWindow.h"

class tst_HelpWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void listsEveryKey();
    void aboutShowsLicence();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
};

void tst_HelpWindow::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
}

void tst_HelpWindow::listsEveryKey()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.key(Qt::Key_F1);
    auto* const help = viewer.child<QDialog>("helpWindow");
    QVERIFY(help && help->isVisible());
    auto* const table = help->findChild<QTableWidget*>();
    QMap<QString, QString> listed;
    for (int row = 0; row < table->rowCount(); ++row)
        listed.insert(table->item(row, 0)->text(), table->item(row, 1)->text());
    QCOMPARE(listed.value(QStringLiteral("Play")), QStringLiteral("Space or K or P"));
    QCOMPARE(listed.value(QStringLiteral("Next Picture")), QStringLiteral("Right or . or E"));
    QCOMPARE(listed.value(QStringLiteral("Leave full screen")), QStringLiteral("Esc"));
    for (QAction* const action : viewer.window.findChild<CxActions*>()->findChildren<QAction*>()) {
        if (!action->shortcut().isEmpty())
            QVERIFY2(listed.contains(QString(action->text()).remove('&')), qPrintable(action->text()));
    }
}

void tst_HelpWindow::aboutShowsLicence()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.child<QAction>("about")->trigger();
    auto* const about = viewer.child<QDialog>("aboutWindow");
    QVERIFY(about && about->isVisible());
    QString const text =
        about->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly)->property("plainText").toString();
    QVERIFY(text.contains(QStringLiteral("OpenH264 Codecs")));
    QVERIFY(text.contains(QString::fromUtf8("Copyright \u00A9 2014 Cisco")));
}

QTEST_MAIN(tst_HelpWindow)
#include "tst_HelpWindow.moc"
