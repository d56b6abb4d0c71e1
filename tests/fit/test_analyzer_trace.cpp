// Reading a stored trace: whole ones, and every way in which a file can be wrong.
#include "fit/analyzer_trace.h"
#include "kit/file_content.h"
#include "kit/process_memory.h"

#include <QSemaphore>
#include <QThread>
#include <QtTest>

#include <memory>

class TestAnalyzerTrace : public QObject
{
    Q_OBJECT

private slots:
    void theSpanIsCentred();
    void fieldsAreTrimmedAndFurtherOnesIgnored();
    void textThatIsNoNumberCountsAsZero();
    void linesOfOneFieldAreNoPoints();
    void linesMayEndInTwoCharacters();
    void theLastLineNeedsNoEnd();
    void readingStopsAtTheMostPoints();
    void theMiddleIsThatOfFirstAndLastPoint();
    void filesWithoutPointsGiveNone_data();
    void filesWithoutPointsGiveNone();
    void whatIsNoFileGivesNone();
    void ofAVeryLongLineOnlyTheBeginningCounts();
    void aHugeLineTakesNoMemory();
    void anAbandonedReadingEnds();
    void rubbishHarmsNothing();

private:
    AnalyzerTrace read(const QByteArray& content, int mostPoints = 1000);

    QTemporaryDir folder;
};

AnalyzerTrace TestAnalyzerTrace::read(const QByteArray& content, int mostPoints)
{
    const QString path = folder.filePath(QStringLiteral("trace.txt"));
    putContent(path, content);
    return readAnalyzerTrace(path, mostPoints);
}

void TestAnalyzerTrace::theSpanIsCentred()
{
    const AnalyzerTrace trace = read("1e9;-10\n1.05e9;-20\n1.1e9;-30\n");
    QCOMPARE(trace.pointCount(), 3);
    QCOMPARE(trace.frequencies, QVector<double>({-50e6, 0, 50e6}));
    QCOMPARE(trace.levels, QVector<double>({-10, -20, -30}));
}

void TestAnalyzerTrace::fieldsAreTrimmedAndFurtherOnesIgnored()
{
    const AnalyzerTrace trace = read(" -4 ;\t1.5 ; more;;\n4; 2.5;\n");
    QCOMPARE(trace.frequencies, QVector<double>({-4, 4}));
    QCOMPARE(trace.levels, QVector<double>({1.5, 2.5}));
}

void TestAnalyzerTrace::textThatIsNoNumberCountsAsZero()
{
    // A heading is a point like any other.
    const AnalyzerTrace trace = read("Frequency;Level\n2,5;1,5\n;\n-6;7\n");
    QCOMPARE(trace.frequencies, QVector<double>({3, 3, 3, -3}));
    QCOMPARE(trace.levels, QVector<double>({0, 0, 0, 7}));
}

void TestAnalyzerTrace::linesOfOneFieldAreNoPoints()
{
    const AnalyzerTrace trace = read("\n-1;5\n100\n\n   \n1;6\n\n");
    QCOMPARE(trace.frequencies, QVector<double>({-1, 1}));
    QCOMPARE(trace.levels, QVector<double>({5, 6}));
}

void TestAnalyzerTrace::linesMayEndInTwoCharacters()
{
    QCOMPARE(read("-1;5\r\n1;6\r\n").levels, QVector<double>({5, 6}));
}

void TestAnalyzerTrace::theLastLineNeedsNoEnd()
{
    QCOMPARE(read("-1;5\n1;6").levels, QVector<double>({5, 6}));
}

void TestAnalyzerTrace::readingStopsAtTheMostPoints()
{
    const AnalyzerTrace trace = read("1;1\n2;2\n3;3\n4;4\n", 3);
    QCOMPARE(trace.levels, QVector<double>({1, 2, 3}));
    QCOMPARE(trace.frequencies, QVector<double>({-1, 0, 1})); // centred without the fourth
    QCOMPARE(read("1;1\n", 0).pointCount(), 0);
}

void TestAnalyzerTrace::theMiddleIsThatOfFirstAndLastPoint()
{
    // Also when they are not the lowest and the highest.
    QCOMPARE(read("2;0\n100;0\n4;0\n").frequencies, QVector<double>({-1, 97, 1}));
}

void TestAnalyzerTrace::filesWithoutPointsGiveNone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one end of line") << QByteArray("\n");
    QTest::newRow("no separator") << QByteArray("1 2\n3 4\n");
}

void TestAnalyzerTrace::filesWithoutPointsGiveNone()
{
    QFETCH(QByteArray, content);
    QCOMPARE(read(content).pointCount(), 0);
}

void TestAnalyzerTrace::whatIsNoFileGivesNone()
{
    QCOMPARE(readAnalyzerTrace(folder.filePath("missing.txt"), 10).pointCount(), 0);
    QCOMPARE(readAnalyzerTrace(folder.path(), 10).pointCount(), 0);
    QCOMPARE(readAnalyzerTrace(QStringLiteral("/dev/zero"), 10).pointCount(), 0);
}

void TestAnalyzerTrace::ofAVeryLongLineOnlyTheBeginningCounts()
{
    const QByteArray tail(200000, 'x');
    const AnalyzerTrace trace = read("-1;5;" + tail + ";7;8\n1;6\n" + tail + ";2\n");
    QCOMPARE(trace.frequencies, QVector<double>({-1, 1}));
    QCOMPARE(trace.levels, QVector<double>({5, 6}));

    // Also where the end of the line falls just behind, on and before the bound.
    for (int length = 65520; length < 65550; ++length) {
        const QByteArray begin = QByteArray("-1;5;").leftJustified(length, 'x');
        QCOMPARE(read(begin + "\r\n1;6\n").levels, QVector<double>({5, 6}));
        QCOMPARE(read(begin + "\n1;6").levels, QVector<double>({5, 6}));
    }
}

void TestAnalyzerTrace::aHugeLineTakesNoMemory()
{
    QFile file(folder.filePath(QStringLiteral("huge.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(128 << 20)); // zeros that take no room on the disk either
    if (!forgetMostMemory()) {
        QSKIP("the system doesn't tell the memory of a process");
    }
    const qint64 before = mostMemory();
    QCOMPARE(readAnalyzerTrace(file.fileName(), 1000).pointCount(), 0);
    QVERIFY(mostMemory() - before < 64 << 10);
}

void TestAnalyzerTrace::anAbandonedReadingEnds()
{
    // So large that it would be read for many minutes.
    QFile file(folder.filePath(QStringLiteral("endless.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (!file.resize(qint64{1} << 40)) {
        QSKIP("no room for a file of a terabyte, not even of zeros");
    }
    std::atomic<bool> abandoned{false};
    QSemaphore begun;
    std::unique_ptr<QThread> reader(QThread::create([&] {
        begun.release();
        readAnalyzerTrace(file.fileName(), 1000, &abandoned);
    }));
    reader->start();
    begun.acquire();
    abandoned = true;
    QVERIFY(reader->wait(5000));
    QCOMPARE(readAnalyzerTrace(file.fileName(), 1000, &abandoned).pointCount(), 0);
}

void TestAnalyzerTrace::rubbishHarmsNothing()
{
    QByteArray rubbish;
    for (int i = 0; i < 300000; ++i) {
        rubbish.append(static_cast<char>((i * 2654435761U) >> 24));
    }
    const AnalyzerTrace trace = read(rubbish, 100000);
    QCOMPARE(trace.frequencies.size(), trace.levels.size());
    QCOMPARE(read(QByteArray(5000000, ';')).pointCount(), 1);
}

QTEST_APPLESS_MAIN(TestAnalyzerTrace)
#include "test_analyzer_trace.moc"
