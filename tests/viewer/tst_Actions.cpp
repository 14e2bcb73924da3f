#include <QAction>
#include <QMap>
#include <QTest>

#include "Actions.h"

class tst_Actions : public QObject
{
    Q_OBJECT

private slots:
    void noKeyHasTwoActions();
    void tipFollowsItsAction();
    void greyedActionsSayWhy();
};

void tst_Actions::noKeyHasTwoActions()
{
    CxActions const actions(nullptr);
    QMap<QKeySequence, QString> seen;
    for (QAction* const action : actions.findChildren<QAction*>()) {
        for (QKeySequence const& key : action->shortcuts()) {
            QVERIFY2(!seen.contains(key), qPrintable(action->objectName() + seen.value(key)));
            seen.insert(key, action->objectName());
        }
    }
    QVERIFY(seen.size() > 20);
}

void tst_Actions::tipFollowsItsAction()
{
    CxActions actions(nullptr);
    QCOMPARE(actions.play->toolTip(), QStringLiteral("Play (Space)"));
    actions.showPlaying(true);
    QCOMPARE(actions.play->toolTip(), QStringLiteral("Pause (Space)"));
}

void tst_Actions::greyedActionsSayWhy()
{
    CxActions const actions(nullptr);
    for (QAction* const action : actions.findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        QString const name = action->objectName();
        CxLookActions const& look = actions.look;
        if (QStringList{"quit", "keys", "about", "fullScreen", "snapshotFolder"}.contains(name) ||
            QList<QAction*>{look.levels, look.markClipping, look.measure, look.info, look.overview,
                            look.turnRight, look.turnLeft, look.mirror, look.pixelShape}
                .contains(action))
            continue; // never greyed
        action->setEnabled(false);
        QVERIFY2(action->toolTip().contains(QStringLiteral(" – ")), qPrintable(name));
        action->setEnabled(true);
        QVERIFY2(!action->toolTip().contains(QStringLiteral(" – ")), qPrintable(name));
    }
}

QTEST_MAIN(tst_Actions)
#include "tst_Actions.moc"
