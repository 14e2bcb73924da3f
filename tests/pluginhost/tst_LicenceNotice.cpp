#include "LicenceNotice.h"

#include <QtTest>

#include "CxPlugin.h"

/// A plug-in's licence notice is shown as its author wrote it.
class tst_LicenceNotice : public QObject
{
    Q_OBJECT

private slots:
    void noticeIsReadAsItWasWritten_data();
    void noticeIsReadAsItWasWritten();
};

struct SxNoticePlugin : CxPlugin
{
    QString notice;
    QString copyrightNotice() const override { return notice; }
};

void tst_LicenceNotice::noticeIsReadAsItWasWritten_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("shown");
    QString const written = QString::fromUtf8("\u201CAS IS\u201D \u00A9 2014");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("ASCII") << "Copyright 2014\n"
                           << "Copyright 2014\n";
    QTest::newRow("UTF-8 read as Latin-1") << QString::fromLatin1(written.toUtf8()) << written;
    QTest::newRow("read right") << written << written;
    QTest::newRow("Latin-1 read as Latin-1")
        << QString::fromUtf8("\u00A9 M\u00FCller") << QString::fromUtf8("\u00A9 M\u00FCller");
    QTest::newRow("cut off in a letter")
        << QString::fromLatin1("\xE2\x80") << QString::fromLatin1("\xE2\x80");
}

void tst_LicenceNotice::noticeIsReadAsItWasWritten()
{
    QFETCH(QString, given);
    SxNoticePlugin plugin;
    plugin.notice = given;
    QTEST(fx_LicenceNotice(plugin), "shown");
}

QTEST_APPLESS_MAIN(tst_LicenceNotice)
#include "tst_LicenceNotice.moc"
