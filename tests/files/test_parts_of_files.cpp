// The parts that readers and writers of signals are made of, where a whole file wouldn't tell.
#include "files/decimal_text.h"
#include "files/sample_words.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <thread>

class TestPartsOfFiles : public QObject
{
    Q_OBJECT

private slots:
    void indexesOfUpToNineDigitsAreSure_data();
    void indexesOfUpToNineDigitsAreSure();
    void otherIndexesAreLeftToTheCaller_data();
    void otherIndexesAreLeftToTheCaller();
    void whoWritesOnFindsTheEndWhicheverPieceCameLast();
};

void TestPartsOfFiles::indexesOfUpToNineDigitsAreSure_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("index");
    QTest::newRow("0") << QByteArray("0 1") << 0;
    QTest::newRow("one digit") << QByteArray("7 1") << 7;
    QTest::newRow("zeros before") << QByteArray("007 1") << 7;
    QTest::newRow("nine digits") << QByteArray("999999999 1") << 999999999;
}

void TestPartsOfFiles::indexesOfUpToNineDigitsAreSure()
{
    QFETCH(QByteArray, text);
    QFETCH(int, index);
    TextRange rest{text.constData(), text.constData() + text.size()};
    int value = -1;
    QVERIFY(takeSureIndex(rest, value));
    QCOMPARE(value, index);
    QCOMPARE(QByteArray(rest.begin), QByteArray(" 1"));
}

void TestPartsOfFiles::otherIndexesAreLeftToTheCaller_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"", " 1", "-1", "+1", "x", "/", ":", "1000000000", "4294967297"}) {
        QTest::newRow(text) << QByteArray(text);
    }
}

void TestPartsOfFiles::otherIndexesAreLeftToTheCaller()
{
    QFETCH(QByteArray, text);
    TextRange rest{text.constData(), text.constData() + text.size()};
    int value = 0;
    QVERIFY(!takeSureIndex(rest, value));
}

// The first of two pieces is held back until the second one stands in the file.
void TestPartsOfFiles::whoWritesOnFindsTheEndWhicheverPieceCameLast()
{
    if (usefulThreads() < 2) {
        QSKIP("one core writes one piece after the other");
    }
    constexpr int count = 2 * 131072;
    const QTemporaryDir folder;
    const QString path = folder.filePath("words");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write("head");
    writeWords(file, count, [&](int first, int end, double* values) {
        const QDeadlineTimer limit(10000);
        while (first == 0 && QFileInfo(path).size() < 4 + 2 * count && !limit.hasExpired()) {
            std::this_thread::yield();
        }
        std::fill(values, values + (end - first), first < count / 2 ? 1.0 : 2.0);
    });
    file.write("}");
    file.seek(0);
    const QByteArray ones = QByteArray("\1\0", 2).repeated(count / 2);
    const QByteArray twos = QByteArray("\2\0", 2).repeated(count / 2);
    QVERIFY(file.readAll() == "head" + ones + twos + '}');
}

QTEST_APPLESS_MAIN(TestPartsOfFiles)
#include "test_parts_of_files.moc"
