#include <QBuffer>
#include <QtTest>

#include "UnitScan.h"

/// The scan itself; what its units say of a stream is tst_StreamKind's.
class tst_UnitScan : public QObject
{
    Q_OBJECT

private slots:
    void unitsAreGivenFromBehindTheirStartCodes();
    void limitEndsTheScan();
    void mediumThatFailsOnTheWayIsNoEnd();
};

static QByteArrayList fx_Units(QIODevice& file, qint64 limit, bool& isRead)
{
    QByteArrayList units;
    isRead = fx_ForEachUnit(file, limit, [&units](uchar const* unit, size_t size) {
        units += QByteArray(reinterpret_cast<char const*>(unit), static_cast<int>(size));
    });
    return units;
}

static QByteArray const kThree("front\0\0\1one\0\0\0\1two\0\0\1", 20);

void tst_UnitScan::unitsAreGivenFromBehindTheirStartCodes()
{
    QBuffer file;
    file.setData(kThree);
    QVERIFY(file.open(QIODevice::ReadOnly));
    bool isRead = false;
    QByteArrayList const units = fx_Units(file, -1, isRead);
    QVERIFY(isRead);
    QCOMPARE(units, (QByteArrayList{kThree.mid(8), kThree.mid(15)})); // the last code has nothing behind it
}

void tst_UnitScan::limitEndsTheScan()
{
    QBuffer file;
    file.setData(kThree);
    QVERIFY(file.open(QIODevice::ReadOnly));
    bool isRead = false;
    QCOMPARE(fx_Units(file, 10, isRead), QByteArrayList{"on"});
    QVERIFY(isRead);
}

/// A disk that gives the first bytes and no more.
class CxFailingDisk : public QIODevice
{
    qint64 readData(char* data, qint64 size) override
    {
        if (m_isRead)
            return -1;
        m_isRead = true;
        size = std::min<qint64>(size, kThree.size());
        std::copy_n(kThree.constData(), size, data);
        return size;
    }
    qint64 writeData(char const*, qint64) override { return -1; }
    qint64 size() const override { return 1000; }

    bool m_isRead = false;
};

void tst_UnitScan::mediumThatFailsOnTheWayIsNoEnd()
{
    CxFailingDisk file;
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    bool isRead = true;
    fx_Units(file, -1, isRead);
    QVERIFY(!isRead);
}

QTEST_GUILESS_MAIN(tst_UnitScan)
#include "tst_UnitScan.moc"
