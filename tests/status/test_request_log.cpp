// What the log keeps of what clients ask.
#include "status/request_log.h"

#include <QtTest>

namespace {

QStringList logged;

// While it lives, messages are collected instead of shown.
class CollectedLog
{
public:
    CollectedLog()
    {
        logged.clear();
        former = qInstallMessageHandler(collect);
    }
    ~CollectedLog() { qInstallMessageHandler(former); }
    CollectedLog(const CollectedLog&) = delete;
    CollectedLog& operator=(const CollectedLog&) = delete;

private:
    static void collect(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                        const QString& text)
    {
        logged.append(text);
    }

    QtMessageHandler former;
};

} // namespace

class TestRequestLog : public QObject
{
    Q_OBJECT

private slots:
    void requestsStandInTheLogWhole();
    void ofAFloodOneLineTellsHowManyMoreThereWere();
    void afterTheSecondRequestsStandInTheLogAgain();
    void whatWasNotToldIsToldAtTheEnd();
    void emptyRequestsAreAFloodToo();
    void requestsThatJustFitAreNoFlood();
};

void TestRequestLog::requestsStandInTheLogWhole()
{
    const CollectedLog collected;
    {
        RequestLog log;
        log.note("GetSymbol\r\n");
        log.note(QString(1024, 'x'));
    }
    const QStringList expected = {"<<  \"GetSymbol\\r\\n\"", "<<  \"" + QString(1024, 'x') + '"'};
    QCOMPARE(logged, expected);
}

// 65536 bytes hold 63 lines of 1024 + 7 bytes.
void TestRequestLog::ofAFloodOneLineTellsHowManyMoreThereWere()
{
    const CollectedLog collected;
    RequestLog log;
    for (int i = 0; i < 1000; ++i) {
        log.note(QString(1024, 'x'));
    }
    log.note("x"); // would still fit
    QCOMPARE(logged.size(), 63);
    QTRY_COMPARE(logged.size(), 64);
    QCOMPARE(logged.constLast(), QString("<<  938 more requests within a second"));
}

void TestRequestLog::afterTheSecondRequestsStandInTheLogAgain()
{
    const CollectedLog collected;
    RequestLog log;
    for (int i = 0; i < 64; ++i) {
        log.note(QString(1024, 'x'));
    }
    QTRY_COMPARE(logged.size(), 64);
    for (int i = 0; i < 63; ++i) {
        log.note(QString(1024, 'y'));
    }
    QCOMPARE(logged.size(), 64 + 63);
    QCOMPARE(logged.constLast().count('y'), 1024);
}

void TestRequestLog::whatWasNotToldIsToldAtTheEnd()
{
    const CollectedLog collected;
    {
        RequestLog log;
        for (int i = 0; i < 65; ++i) {
            log.note(QString(1024, 'x'));
        }
    }
    QCOMPARE(logged.size(), 64);
    QCOMPARE(logged.constLast(), QString("<<  2 more requests within a second"));
}

// 65536 bytes hold 9362 lines of 7 bytes.
void TestRequestLog::emptyRequestsAreAFloodToo()
{
    const CollectedLog collected;
    RequestLog log;
    for (int i = 0; i < 20000; ++i) {
        log.note({});
    }
    QCOMPARE(logged.size(), 9362);
}

// 64 lines of 1017 + 7 bytes are 65536.
void TestRequestLog::requestsThatJustFitAreNoFlood()
{
    const CollectedLog collected;
    RequestLog log;
    for (int i = 0; i < 64; ++i) {
        log.note(QString(1017, 'x'));
    }
    QCOMPARE(logged.size(), 64);
    log.note({});
    QCOMPARE(logged.size(), 64);
}

QTEST_GUILESS_MAIN(TestRequestLog)
#include "test_request_log.moc"
