// The notch list and the table model that it fills.
#include "setup/notch_list.h"

#include <QBrush>
#include <QStandardItemModel>
#include <QtTest>

namespace {

Notch notchAt(double center)
{
    Notch notch;
    notch.center = center;
    notch.width = 1e6;
    notch.startFreq = center - 5e5;
    notch.stopFreq = center + 5e5;
    notch.startIndex = -7;
    notch.stopIndex = 9;
    notch.depth = -40.5;
    return notch;
}

QStringList row(const NotchList& list, int number)
{
    QStringList texts;
    for (int column = 0; column < list.model()->columnCount(); ++column) {
        texts << list.model()->index(number, column).data().toString();
    }
    return texts;
}

} // namespace

class TestNotchList : public QObject
{
    Q_OBJECT

private slots:
    void startsEmptyWithSevenColumns();
    void insertClampsThePosition();
    void tableShowsAbsoluteFrequencies();
    void tableHasItsHeaderAlsoWhenEmpty();
    void oddRowsAreShadedAndAllAreRightAligned();
    void clearKeepsTheModel();
    void nothingIsRebuiltWhereNoCellWouldChange();
    void typedTextGivesWayEachTime();
    void textTypedBackLeavesTheCellsAsTheyAre();
    void copiesDetachTheirRowsAndShareTheModel();
};

void TestNotchList::startsEmptyWithSevenColumns()
{
    const NotchList list;
    QVERIFY(list.items.isEmpty());
    QCOMPARE(list.model()->rowCount(), 0);
    QCOMPARE(list.model()->columnCount(), 7);
}

void TestNotchList::insertClampsThePosition()
{
    NotchList list;
    list.insert(1, notchAt(1));
    list.insert(99, notchAt(2));
    list.insert(0, notchAt(3));
    list.insert(-5, notchAt(4));
    list.insert(1, notchAt(5));
    QList<double> centers;
    for (const Notch& notch : qAsConst(list.items)) {
        centers << notch.center;
    }
    QCOMPARE(centers, (QList<double>{4, 5, 3, 1, 2}));
}

void TestNotchList::tableShowsAbsoluteFrequencies()
{
    NotchList list;
    list.insert(1, notchAt(-5e6));
    list.fillTable(1e9);
    QCOMPARE(row(list, 0), (QStringList{"995.000000", "1.000000", "994.500000", "995.500000", "-7",
                                        "9", "-40.50"}));
}

void TestNotchList::tableHasItsHeaderAlsoWhenEmpty()
{
    NotchList list;
    list.fillTable(0.0);
    QStringList header;
    for (int column = 0; column < 7; ++column) {
        header << list.model()->headerData(column, Qt::Horizontal).toString();
    }
    QCOMPARE(header, (QStringList{"Center/MHz", "Width/MHz", "Start Freq/MHz", "Stop Freq/MHz",
                                  "Start Index", "Stop Index", "Depth/dB"}));
    QCOMPARE(list.model()->rowCount(), 0);
}

void TestNotchList::oddRowsAreShadedAndAllAreRightAligned()
{
    NotchList list;
    for (int i = 0; i < 3; ++i) {
        list.insert(i, notchAt(i));
    }
    list.fillTable(0.0);
    for (int r = 0; r < 3; ++r) {
        for (int column = 0; column < 7; ++column) {
            const QModelIndex index = list.model()->index(r, column);
            QCOMPARE(index.data(Qt::TextAlignmentRole).toInt(), 130);
            const QVariant background = index.data(Qt::BackgroundRole);
            QCOMPARE(background.isValid(), r == 1);
            if (r == 1) {
                QCOMPARE(background.value<QBrush>(), QBrush(QColor(239, 240, 241, 255)));
            }
            QVERIFY(index.flags().testFlag(Qt::ItemIsEditable));
        }
    }
}

void TestNotchList::clearKeepsTheModel()
{
    NotchList list;
    list.insert(1, notchAt(0));
    const QStandardItemModel* model = list.model();
    list.clear();
    QVERIFY(list.items.isEmpty());
    QCOMPARE(list.model(), model);
}

void TestNotchList::nothingIsRebuiltWhereNoCellWouldChange()
{
    NotchList list;
    Notch notch;
    notch.center = 1e6;
    list.insert(1, notch);
    QVERIFY(list.fillTable(0.0));
    const QStandardItem* item = list.model()->item(0, 0);
    QVERIFY(!list.fillTable(0.0));
    QCOMPARE(list.model()->item(0, 0), item);
    list.model()->item(0, 0)->setText("typed");
    QVERIFY(list.fillTable(0.0));
    QCOMPARE(list.model()->item(0, 0)->text(), QString("1.000000"));
    QVERIFY(list.fillTable(1e6)); // another carrier
    list.items[0].depth = -3.0;
    QVERIFY(list.fillTable(1e6));
    QCOMPARE(list.model()->item(0, 6)->text(), QString("-3.00"));
    list.clear();
    QVERIFY(list.fillTable(1e6));
    QCOMPARE(list.model()->rowCount(), 0);
}

// What is typed while nothing else changes, and again after a refresh that changed nothing.
void TestNotchList::typedTextGivesWayEachTime()
{
    NotchList list;
    list.insert(1, notchAt(0));
    list.insert(2, notchAt(0));
    QVERIFY(list.fillTable(0.0));
    for (const char* typed : {"letters", "0.5", ""}) {
        list.model()->item(1, 0)->setText(typed);
        QVERIFY(list.fillTable(0.0));
        QCOMPARE(list.model()->item(1, 0)->text(), QString("0.000000"));
        list.model()->item(1, 0)->setText("0.000000");
        QVERIFY(!list.fillTable(0.0));
    }
}

// A cell that was touched may have its editor open.
void TestNotchList::textTypedBackLeavesTheCellsAsTheyAre()
{
    NotchList list;
    list.insert(1, notchAt(0));
    QVERIFY(list.fillTable(0.0));
    QStandardItem* item = list.model()->item(0, 0);
    item->setText("0.5");
    item->setText("0.000000");
    QVERIFY(!list.fillTable(0.0));
    QCOMPARE(list.model()->item(0, 0), item);
}

void TestNotchList::copiesDetachTheirRowsAndShareTheModel()
{
    NotchList list;
    list.insert(1, notchAt(0));
    NotchList copy = list;
    copy.items[0].depth = -3.0;
    QCOMPARE(list.items.at(0).depth, -40.5);
    QCOMPARE(copy.model(), list.model());
    QVERIFY(list.rowsOnly().model() == nullptr);
}

QTEST_GUILESS_MAIN(TestNotchList)
#include "test_notch_list.moc"
