#include <QAction>
#include <QMap>
#include <QTest>

#include "Actions.h"

class tst_Actions : public QObject
{
    Q_OBJECT

private slots:
    void noKeyHasTwoActions();
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

QTEST_MAIN(tst_Actions)
#include "tst_Actions.moc"
