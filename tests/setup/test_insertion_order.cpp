// The quick order against a list into which each row is inserted.
#include "setup/insertion_order.h"

#include <QElapsedTimer>
#include <QtTest>

#include <random>

class TestInsertionOrder : public QObject
{
    Q_OBJECT

private slots:
    void noRowHasNoOrder();
    void eachRowMovesThoseBehindIt();
    void randomRowsStandWhereAListHasThem();
    void aMillionRowsTakeLittleTime();
};

void TestInsertionOrder::noRowHasNoOrder()
{
    QVERIFY(orderAfterInsertions({}).isEmpty());
}

// 0; 0 1; 2 0 1; 2 3 0 1; 2 3 0 1 4; 5 2 3 0 1 4
void TestInsertionOrder::eachRowMovesThoseBehindIt()
{
    QCOMPARE(orderAfterInsertions({7, 1, 0, 1, 2147483647, -2147483647}),
             (QVector<int>{5, 2, 3, 0, 1, 4}));
}

void TestInsertionOrder::randomRowsStandWhereAListHasThem()
{
    std::mt19937 engine(20261122);
    for (int count = 1; count < 300; ++count) {
        std::uniform_int_distribution<qint32> position(-2, count + 2);
        QVector<qint32> positions;
        QList<int> list;
        for (int row = 0; row < count; ++row) {
            positions.append(position(engine));
            list.insert(qBound(0, positions.last(), row), row);
        }
        QCOMPARE(orderAfterInsertions(positions), list.toVector());
    }
}

// All in the middle. Moved one by one they would take a minute.
void TestInsertionOrder::aMillionRowsTakeLittleTime()
{
    QElapsedTimer timer;
    timer.start();
    const QVector<int> order = orderAfterInsertions(QVector<qint32>(1000000, 500000));
    QVERIFY(timer.elapsed() < 10000);
    QCOMPARE(order.at(499999), 499999);
    QCOMPARE(order.at(500000), 999999); // the last one
    QCOMPARE(order.at(999999), 500000);
}

QTEST_GUILESS_MAIN(TestInsertionOrder)
#include "test_insertion_order.moc"
