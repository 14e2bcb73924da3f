#include <QtTest>

#include "EncoderOptions.h"

class tst_EncoderOptions : public QObject
{
    Q_OBJECT

private slots:
    void namesAndNumbersBelongTogether();
};

void tst_EncoderOptions::namesAndNumbersBelongTogether()
{
    QVERIFY(fx_LevelFromName("1b") == 9);
    QVERIFY(fx_LevelFromName("1B") == 9);
    QVERIFY(fx_LevelFromName("4") == 40);
    QVERIFY(fx_LevelFromName("4.0") == 40);
    QVERIFY(fx_LevelFromName("5.2") == 52);
    QVERIFY(!fx_LevelFromName(".0"));
    QVERIFY(!fx_LevelFromName(""));
    QCOMPARE(fx_LevelNames().size(), 17);
    for (QString const& name : fx_LevelNames())
        QCOMPARE(fx_LevelName(*fx_LevelFromName(name)), name);
    QVERIFY(fx_ProfileFromName("High") == 100);
    QVERIFY(fx_ComplexityFromName("low") == 0);
    QCOMPARE(SxEncoderOptions().toMap().value("h264_level_idc").toInt(), 52);
    QCOMPARE(SxEncoderOptions().toMap().size(), 5);
}

QTEST_GUILESS_MAIN(tst_EncoderOptions)
#include "tst_EncoderOptions.moc"
