// Without a complete VISA library the program goes on: the environment of this test names the
// folder in which a library is found, if any.
#include "remote/rs232_interface.h"
#include "remote/socket_interface.h"
#include "remote/visa_interfaces.h"

#include "kit/remote_failure.h"

#include <QtTest>

class TestVisaMissing : public QObject
{
    Q_OBJECT

private slots:
    void itCountsAsAbsent();
    void everyVisaTransportSaysSo();
    void theOthersNeedNone();
    void theDriversFolderIsUnknown();
    void aRegistryNamesTheDriversFolder_data();
    void aRegistryNamesTheDriversFolder();
};

void TestVisaMissing::itCountsAsAbsent()
{
    QVERIFY(!visaAvailable());
    VisaFunctionTable table;
    QVERIFY(!table.load());
    QCOMPARE(failureOf([&] { table.requireVisa(); }), QString("Could not load VISA"));
}

void TestVisaMissing::everyVisaTransportSaysSo()
{
    const QString failure = "Could not load VISA";
    QCOMPARE(failureOf([] { GPIBInterface(0, 20); }), failure);
    QCOMPARE(failureOf([] { VXIInterface("127.0.0.1"); }), failure);
    QCOMPARE(failureOf([] { TLNKInterface("127.0.0.1"); }), failure);
    QCOMPARE(failureOf([] { HiSLIPInterface("127.0.0.1"); }), failure);
}

void TestVisaMissing::theOthersNeedNone()
{
    QCOMPARE(failureOf([] { SocketInterface("127.0.0.1"); }), QString("(none)"));
    QCOMPARE(failureOf([] { RS232Interface("nowhere", {9600, 8, 0, 1, 0}); }), QString("(none)"));
}

void TestVisaMissing::theDriversFolderIsUnknown()
{
    QCOMPARE(vxipnpFrameworkPath(), QString("---"));
}

void TestVisaMissing::aRegistryNamesTheDriversFolder_data()
{
    QTest::addColumn<QString>("preferred");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("folder");
    QTest::newRow("neither") << QString() << QString() << "---";
    QTest::newRow("the first name") << "C:\\VXIpnp\\" << QString() << "C:\\VXIpnp\\bin";
    QTest::newRow("the other name") << QString() << "D:\\Old\\"
                                    << "D:\\Old\\bin";
    QTest::newRow("both names") << "C:\\VXIpnp\\"
                                << "D:\\Old\\"
                                << "C:\\VXIpnp\\bin";
    QTest::newRow("no separator at the end") << "C:\\VXI" << QString() << "C:\\VXIbin";
}

void TestVisaMissing::aRegistryNamesTheDriversFolder()
{
    QFETCH(QString, preferred);
    QFETCH(QString, other);
    const QMap<QString, QString> stored{{"FRAMEWORK_PATH", preferred}, {"FrameworkPath", other}};
    const auto registry = [&stored](const char* key, const char* name) -> std::optional<QString> {
        const QString value = stored.value(name);
        const bool isThere =
            !value.isNull() && !qstrcmp(key, "SOFTWARE\\VXIPNP_Alliance\\VXIPNP\\CurrentVersion");
        return isThere ? std::make_optional(value) : std::nullopt;
    };
    QTEST(vxipnpFrameworkPath(registry), "folder");
}

QTEST_GUILESS_MAIN(TestVisaMissing)
#include "test_visa_missing.moc"
