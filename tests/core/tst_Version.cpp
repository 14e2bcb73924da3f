#include <QtTest>

#include "tarnCoreVersion.h"

class tst_Version : public QObject
{
    Q_OBJECT

private slots:
    void isThatOfTheProject();
};

void tst_Version::isThatOfTheProject()
{
    int major = -1;
    int minor = -1;
    int build = -1;
    tarnCoreVersion(major, minor, build);
    QCOMPARE(QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(build), QStringLiteral("1.0.0"));
}

QTEST_APPLESS_MAIN(tst_Version)
#include "tst_Version.moc"
