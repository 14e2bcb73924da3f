#include <QtTest>

#include "LedDigits.h"

class tst_LedDigits : public QObject
{
    Q_OBJECT

private slots:
    void digitsAreReadableAtTheSmallestSize_data();
    void digitsAreReadableAtTheSmallestSize();
    void digitsStayInsideTheirWidth();
};

void tst_LedDigits::digitsAreReadableAtTheSmallestSize_data()
{
    QTest::addColumn<QByteArray>("rows"); // 5 rows of 3
    QTest::newRow("0") << QByteArray("###"
                                     "#.#"
                                     "#.#"
                                     "#.#"
                                     "###");
    QTest::newRow("1") << QByteArray("..#"
                                     "..#"
                                     "..#"
                                     "..#"
                                     "..#");
    QTest::newRow("2") << QByteArray("###"
                                     "..#"
                                     "###"
                                     "#.."
                                     "###");
    QTest::newRow("3") << QByteArray("###"
                                     "..#"
                                     "###"
                                     "..#"
                                     "###");
    QTest::newRow("4") << QByteArray("#.#"
                                     "#.#"
                                     "###"
                                     "..#"
                                     "..#");
    QTest::newRow("5") << QByteArray("###"
                                     "#.."
                                     "###"
                                     "..#"
                                     "###");
    QTest::newRow("6") << QByteArray("###"
                                     "#.."
                                     "###"
                                     "#.#"
                                     "###");
    QTest::newRow("7") << QByteArray("###"
                                     "..#"
                                     "..#"
                                     "..#"
                                     "..#");
    QTest::newRow("8") << QByteArray("###"
                                     "#.#"
                                     "###"
                                     "#.#"
                                     "###");
    QTest::newRow("9") << QByteArray("###"
                                     "#.#"
                                     "###"
                                     "..#"
                                     "###");
}

void tst_LedDigits::digitsAreReadableAtTheSmallestSize()
{
    QFETCH(QByteArray, rows);
    SxCanvas canvas{3, 5, std::vector<quint16>(3 * 5 * 3)};
    fx_DrawLed(canvas, 0, 0, 5, QTest::currentDataTag(), fx_Rgb(255, 255, 255));
    QByteArray drawn;
    for (int i = 0; i < 15; ++i)
        drawn += canvas.samples[static_cast<size_t>(i) * 3] != 0 ? '#' : '.';
    QCOMPARE(drawn, rows);
}

void tst_LedDigits::digitsStayInsideTheirWidth()
{
    for (int height = 5; height <= 200; ++height) {
        QByteArray const text("00:18.234");
        int const width = fx_LedWidth(text, height);
        SxCanvas canvas{width + 20, height + 20,
                        std::vector<quint16>(static_cast<size_t>((width + 20) * (height + 20) * 3))};
        fx_DrawLed(canvas, 10, 10, height, text, fx_Rgb(255, 255, 255));
        for (int y = 0; y < canvas.height; ++y) {
            for (int x = 0; x < canvas.width; ++x) {
                bool const inside = x >= 10 && x < 10 + width && y >= 10 && y < 10 + height;
                QVERIFY2(inside || canvas.pixel(x, y)[0] == 0, qPrintable(QString::number(height)));
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_LedDigits)
#include "tst_LedDigits.moc"
