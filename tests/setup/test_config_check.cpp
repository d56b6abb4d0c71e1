// What a reader of configurations passes over is told with the number of its line.
#include "setup/config_check.h"

#include "setup/config_file.h"

#include <QtTest>

namespace {

// "line: text" of each complaint.
QStringList complaints(const QString& text)
{
    QStringList lines;
    for (const ConfigComplaint& one : ignoredConfigLines(text)) {
        lines.append(QString("%1: %2").arg(one.line).arg(one.text));
    }
    return lines;
}

QVector<int> numbers(const QString& text)
{
    QVector<int> lines;
    for (const ConfigComplaint& one : ignoredConfigLines(text)) {
        lines.append(one.line);
    }
    return lines;
}

} // namespace

class TestConfigCheck : public QObject
{
    Q_OBJECT

private slots:
    void whatTheProgramWritesIsReadWhole();
    void unknownSectionsAndKeysAreTold();
    void linesOfAnotherFormAreTold();
    void aLastLineWithoutAnEndIsTold();
    void everyLineEndCountsOnce();
    void whatComesAgainReplacesWhatWasThere();
    void valuesOfTheWrongKindAreTold();
    void everyKeyOfTheReaderIsOneOfTheWriter();
};

void TestConfigCheck::whatTheProgramWritesIsReadWhole()
{
    MeasurementSetup setup;
    setup.sampleRate = 1.2345e-7;
    setup.notches->insert(1, Notch());
    setup.notches->insert(2, Notch());
    setup.iFile = "/a b/c.wav";
    QCOMPARE(complaints(configTextOf(setup)), QStringList());
}

void TestConfigCheck::unknownSectionsAndKeysAreTold()
{
    QCOMPARE(complaints("[NPR]\nSeed = 2\nSeeds = 3\n\n[NPT]\nSeed = 4\n"),
             QStringList(
                 {"3: ignored: [NPR] has no key \"Seeds\"", "5: ignored: unknown section [NPT]"}));
}

void TestConfigCheck::linesOfAnotherFormAreTold()
{
    // Line 3 ends the section, so line 4 belongs to none; line 5 has no key below it; the last
    // line has no end.
    QCOMPARE(numbers("[NPR]\nSeed = 2\n# comment\nSRate = 1\n[User]\n[TCP/IP]\nPort = 1\nPort = 2"),
             (QVector<int>{3, 4, 5, 8}));
}

void TestConfigCheck::aLastLineWithoutAnEndIsTold()
{
    QCOMPARE(complaints("[NPR]\nSeed = 1\nSRate = 2"),
             QStringList{"3: ignored: it has no line end"});
    QCOMPARE(complaints("[NPR]\nSeed = 1\n[User]"), QStringList{"3: ignored: it has no line end"});
}

void TestConfigCheck::everyLineEndCountsOnce()
{
    for (const char* end : {"\n", "\r\n", "\r"}) {
        const QString text = QString("[NPR]\n\n\nSeed = 1\nx\n").replace('\n', end);
        QCOMPARE(
            complaints(text),
            QStringList{"5: ignored: no \"key = value\" line of a section, and no section with "
                        "such a line under it"});
    }
}

void TestConfigCheck::whatComesAgainReplacesWhatWasThere()
{
    QCOMPARE(numbers("[NPR]\nSeed = 1\nSeed = 2\n"), QVector<int>{2});
    QCOMPARE(numbers("[NPR]\nSeed = 1\n[TCP/IP]\nPort = 1\n[NPR]\nSRate = 2\n"),
             (QVector<int>{1, 2}));
}

void TestConfigCheck::valuesOfTheWrongKindAreTold()
{
    QCOMPARE(
        complaints("[NPR]\nSRate = \"fast\"\nFFT Len = 1e+05\nSeed = -3\n[User]\nI File = 5\n"),
        (QStringList{"2: the value of \"SRate\" isn't a number",
                     "3: the value of \"FFT Len\" isn't a whole number",
                     "6: the value of \"I File\" isn't a text in quotes"}));
    QCOMPARE(complaints("[NPR]\nSRate = 1e+999\n"),
             QStringList{"2: the value of \"SRate\" isn't a number"});
    for (const char* other : {"nan", "inf", "-infinity", "1e999"}) {
        QVERIFY2(!fitsConfigKind(other, ConfigKind::Real), other);
    }
}

// The writer's text of a record with a row holds every key but those that are read alone.
void TestConfigCheck::everyKeyOfTheReaderIsOneOfTheWriter()
{
    MeasurementSetup setup;
    setup.notches->insert(1, Notch());
    const QVector<ConfigLine> lines = configLines(configTextOf(setup));
    QStringList written;
    for (const ConfigLine& line : lines) {
        if (line.role == ConfigLine::Role::Key && !line.key.isEmpty()) {
            written.append(line.section + '/' + line.key);
        }
    }
    QStringList known;
    for (const QString& section : configSections() + QStringList{"Notch 1"}) {
        for (const ConfigKey& key : configKeys(section)) {
            known.append(section + '/' + key.name);
        }
    }
    for (const char* empty : {"User/PhaseMag File", "User/I File", "User/Q File"}) {
        QVERIFY2(known.removeOne(empty), empty); // written as "", which carries no value
    }
    written.sort();
    known.sort();
    QCOMPARE(written, known);
}

QTEST_APPLESS_MAIN(TestConfigCheck)
#include "test_config_check.moc"
