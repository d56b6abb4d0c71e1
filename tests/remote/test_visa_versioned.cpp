// The VISA library as it is installed without its development files: the environment of this test
// names a folder that has libvisa.so.0 and nothing else.
#include "remote/visa_interfaces.h"

#include <QtTest>

class TestVisaVersioned : public QObject
{
    Q_OBJECT

private slots:
    void theLibraryIsFound();
};

void TestVisaVersioned::theLibraryIsFound()
{
    VisaFunctionTable table;
    QVERIFY(table.load());
    QVERIFY(visaAvailable());
}

QTEST_GUILESS_MAIN(TestVisaVersioned)
#include "test_visa_versioned.moc"
