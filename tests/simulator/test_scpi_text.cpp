// The grammar: units, paths, keywords, lines.
#include "simulator/line_buffer.h"
#include "simulator/scpi_errors.h"
#include "simulator/scpi_text.h"

#include <QtTest>

namespace {

// The headers of a line, a query with its "?".
QByteArrayList headers(const QByteArray& line)
{
    QByteArrayList list;
    for (const ScpiUnit& unit : scpiUnits(line)) {
        list << unit.header + (unit.query ? "?" : "");
    }
    return list;
}

bool matches(const char* pattern, const char* header)
{
    return ScpiPattern(pattern).matches(header);
}

QByteArrayList linesOf(LineBuffer& buffer)
{
    QByteArrayList lines;
    while (const std::optional<ReceivedLine> line = buffer.takeLine()) {
        lines << line->text;
    }
    return lines;
}

} // namespace

class TestScpiText : public QObject
{
    Q_OBJECT

private slots:
    void aUnitHasAHeaderAndAnArgument();
    void aQueryIsToldByItsQuestionMark();
    void unitsAreDividedAtSemicolons();
    void aSemicolonInQuotesDividesNothing();
    void aHeaderContinuesThePathOfTheOneBefore();
    void aLeadingColonStartsAtTheRoot();
    void commonCommandsLeaveThePathAlone();
    void emptyUnitsAreLeftOut();
    void keywordsMatchInBothFormsAndAnyCase_data();
    void keywordsMatchInBothFormsAndAnyCase();
    void optionalKeywordsMayBeLeftOut();
    void anyBytesAreTaken();
    void linesAreFoundHoweverTheyWereSplit();
    void anOverlongLineIsReportedOnceAndDropped();
    void manyShortLinesAreTakenQuickly();
    void errorsComeOldestFirst();
    void theErrorQueueIsBounded();
    void errorTextsShowNoBinary();
};

void TestScpiText::aUnitHasAHeaderAndAnArgument()
{
    const QVector<ScpiUnit> units = scpiUnits("FREQ:CENT   1000000.5  ");
    QCOMPARE(units.size(), 1);
    QCOMPARE(units[0].header, QByteArray("FREQ:CENT"));
    QCOMPARE(units[0].argument, QByteArray("1000000.5"));
    QVERIFY(!units[0].query);
}

void TestScpiText::aQueryIsToldByItsQuestionMark()
{
    const QVector<ScpiUnit> units = scpiUnits("CALC1:MARK1:FUNC:POW:RES? ACP");
    QCOMPARE(units.size(), 1);
    QVERIFY(units[0].query);
    QCOMPARE(units[0].header, QByteArray("CALC1:MARK1:FUNC:POW:RES"));
    QCOMPARE(units[0].argument, QByteArray("ACP"));
}

void TestScpiText::unitsAreDividedAtSemicolons()
{
    QCOMPARE(headers("INIT;*WAI"), QByteArrayList({"INIT", "*WAI"}));
    QCOMPARE(headers("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP"),
             QByteArrayList({"*CLS", "CALC1:MARK1:FUNC:POW:RES?"}));
    QCOMPARE(headers("&GTL;@LOC;*OPC?"), QByteArrayList({"&GTL", "@LOC", "*OPC?"}));
}

void TestScpiText::aSemicolonInQuotesDividesNothing()
{
    const QVector<ScpiUnit> units = scpiUnits("MMEM \"a;b\";DISP 'c;\"d';*OPC?");
    QCOMPARE(units.size(), 3);
    QCOMPARE(units[0].argument, QByteArray("\"a;b\""));
    QCOMPARE(units[1].argument, QByteArray("'c;\"d'"));
}

void TestScpiText::aHeaderContinuesThePathOfTheOneBefore()
{
    QCOMPARE(headers("FREQ:CENT 1;SPAN 2"), QByteArrayList({"FREQ:CENT", "FREQ:SPAN"}));
    QCOMPARE(headers("POW:ACH:BWID 1;BWID:ACH 2;ACH 3"),
             QByteArrayList({"POW:ACH:BWID", "POW:ACH:BWID:ACH", "POW:ACH:BWID:ACH"}));
}

void TestScpiText::aLeadingColonStartsAtTheRoot()
{
    QCOMPARE(headers(":DM:IQ:STAT ON;:DM:IQ:PRAM OFF"),
             QByteArrayList({"DM:IQ:STAT", "DM:IQ:PRAM"}));
}

void TestScpiText::commonCommandsLeaveThePathAlone()
{
    QCOMPARE(headers("FREQ:CENT 1;*WAI;SPAN 2"),
             QByteArrayList({"FREQ:CENT", "*WAI", "FREQ:SPAN"}));
}

// A command whose own text ends in a line feed leaves ";*OPC?" to the next line.
void TestScpiText::emptyUnitsAreLeftOut()
{
    QCOMPARE(headers(";*OPC?"), QByteArrayList({"*OPC?"}));
    QCOMPARE(headers(" ; ;; "), QByteArrayList());
    QCOMPARE(headers(""), QByteArrayList());
}

void TestScpiText::keywordsMatchInBothFormsAndAnyCase_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<bool>("fits");
    const struct
    {
        const char* header;
        bool fits;
    } rows[] = {
        {"CALC:MARK:FUNC", true},    {"calculate:marker:function", true},
        {"CALC1:MARK1:FUNC1", true}, {"Calc:Marker1:func", true},
        {"CALC2:MARK:FUNC", false},  {"CALCU:MARK:FUNC", false},
        {"CALC:MARK", false},        {"CALC:MARK:FUNC:POW", false},
        {"CALC::MARK:FUNC", false},  {"", false},
        {"CALC11:MARK:FUNC", false}, {"1:1:1", false},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.header) << QByteArray(row.header) << row.fits;
    }
}

void TestScpiText::keywordsMatchInBothFormsAndAnyCase()
{
    QFETCH(QByteArray, header);
    QTEST(ScpiPattern("CALCulate:MARKer:FUNCtion").matches(header), "fits");
}

void TestScpiText::optionalKeywordsMayBeLeftOut()
{
    const char pattern[] = "[SENSe:]POWer:ACHannel:BWIDth[:CHANnel]";
    QVERIFY(matches(pattern, "POW:ACH:BWID"));
    QVERIFY(matches(pattern, "SENS:POW:ACH:BWID"));
    QVERIFY(matches(pattern, "SENS1:POW:ACH:BWID:CHAN"));
    QVERIFY(!matches(pattern, "SENS:SENS:POW:ACH:BWID"));
    QVERIFY(!matches(pattern, "SENS:POW:ACH"));
    QVERIFY(matches("OUTPut2[:STATe]", "OUTP2"));
    QVERIFY(!matches("OUTPut2[:STATe]", "OUTP"));
}

void TestScpiText::anyBytesAreTaken()
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    QVERIFY(!scpiUnits(bytes + bytes).isEmpty());
    QVERIFY(scpiUnits(QByteArray(4096, ';')).isEmpty());
    QCOMPARE(scpiUnits(QByteArray(4096, ':')).size(), 1);
    QCOMPARE(scpiUnits(QByteArray(4096, '"')).size(), 1);
    QCOMPARE(scpiUnits("?").size(), 1);
    QVERIFY(!matches("FREQuency", QByteArray(4096, ':')));
}

void TestScpiText::linesAreFoundHoweverTheyWereSplit()
{
    LineBuffer buffer;
    buffer.append("*IDN");
    QCOMPARE(linesOf(buffer), QByteArrayList());
    buffer.append("?\r\n\nINIT;*W");
    QCOMPARE(linesOf(buffer), QByteArrayList({"*IDN?", ""}));
    for (const char c : QByteArray("AI\nFREQ 1\nX")) {
        buffer.append(QByteArray(1, c));
    }
    QCOMPARE(linesOf(buffer), QByteArrayList({"INIT;*WAI", "FREQ 1"}));
    buffer.append("\n");
    QCOMPARE(linesOf(buffer), QByteArrayList({"X"}));
}

void TestScpiText::anOverlongLineIsReportedOnceAndDropped()
{
    LineBuffer buffer;
    for (int k = 0; k < 1000; ++k) {
        buffer.append(QByteArray(1000, 'x'));
        QVERIFY(!buffer.takeLine());
    }
    buffer.append("\n*OPC?\n");
    const std::optional<ReceivedLine> dropped = buffer.takeLine();
    QVERIFY(dropped && dropped->overrun);
    QCOMPARE(dropped->text, QByteArray(LineBuffer::longestLine, 'x'));
    const std::optional<ReceivedLine> next = buffer.takeLine();
    QVERIFY(next && !next->overrun);
    QCOMPARE(next->text, QByteArray("*OPC?"));
    buffer.append(QByteArray(LineBuffer::longestLine, 'y') + '\n');
    QVERIFY(!buffer.takeLine()->overrun);
    buffer.append(QByteArray(LineBuffer::longestLine + 1, 'y') + '\n');
    QVERIFY(buffer.takeLine()->overrun);
}

// A rest that is moved once a line would take minutes here.
void TestScpiText::manyShortLinesAreTakenQuickly()
{
    LineBuffer buffer;
    buffer.append(QByteArray(4000000, '\n'));
    int count = 0;
    while (buffer.takeLine()) {
        ++count;
    }
    QCOMPARE(count, 4000000);
}

void TestScpiText::errorsComeOldestFirst()
{
    ScpiErrorQueue errors;
    QCOMPARE(errors.takeOldest(), QByteArray("0,\"No error\""));
    errors.add(ScpiError::UndefinedHeader, "FOO");
    errors.add(ScpiError::OutOfRange, "");
    QCOMPARE(errors.takeOldest(), QByteArray("-113,\"Undefined header;FOO\""));
    QCOMPARE(errors.takeOldest(), QByteArray("-222,\"Data out of range\""));
    QCOMPARE(errors.takeOldest(), QByteArray("0,\"No error\""));
}

void TestScpiText::theErrorQueueIsBounded()
{
    ScpiErrorQueue errors;
    for (int k = 0; k < 100000; ++k) {
        errors.add(ScpiError::UndefinedHeader, "FOO");
    }
    for (std::size_t k = 1; k < ScpiErrorQueue::capacity; ++k) {
        QCOMPARE(errors.takeOldest(), QByteArray("-113,\"Undefined header;FOO\""));
    }
    QCOMPARE(errors.takeOldest(), QByteArray("-350,\"Queue overflow\""));
    QCOMPARE(errors.takeOldest(), QByteArray("0,\"No error\""));
}

void TestScpiText::errorTextsShowNoBinary()
{
    ScpiErrorQueue errors;
    errors.add(ScpiError::UndefinedHeader, QByteArray("a\0\n\"\xff", 5) + QByteArray(1000, 'z'));
    QCOMPARE(errors.takeOldest(), "-113,\"Undefined header;a..'." + QByteArray(75, 'z') + '"');
}

QTEST_APPLESS_MAIN(TestScpiText)
#include "test_scpi_text.moc"
