// The scanner against the two expressions that define its grammar, and its cost on bad input.
#include "kit/config_expressions.h"
#include "setup/config_text.h"

#include <QtTest>

#include <random>

namespace {

QString randomText(std::mt19937& engine)
{
    static const QStringList tokens = {
        "[",
        "]",
        "[A]\n",
        "[B c]\r\n",
        "\n",
        "\r",
        " ",
        "=",
        " = ",
        "\"",
        "\"x\"",
        "-",
        ".",
        "e",
        "E+",
        "e|1",
        "1",
        "23",
        "4.5",
        "x",
        "key",
        "\n\n",
        "k = 1\n",
        "k = \"v\"\n",
        "k = \"\"\n",
        "a = 5\" = \"\n",
        "n = -1.5e-07\r\n",
        QString(QChar(0)),
    };
    std::uniform_int_distribution<int> token(0, tokens.size() - 1);
    std::uniform_int_distribution<int> length(1, 25);
    QString text;
    for (int i = length(engine); i > 0; --i) {
        text += tokens.at(token(engine));
    }
    return text;
}

} // namespace

class TestConfigText : public QObject
{
    Q_OBJECT

private slots:
    void takesWhatTheExpressionsTake();
    void sectionWithoutAKeyLineIsLost();
    void badLineEndsItsSection();
    void lastLineNeedsALineEnd();
    void repeatedSectionReplacesTheEarlierOne();
    void emptyQuotedValueIsAbsent();
    void numbersOfEveryFormAreTaken();
    void whatIsNearlyANumberEndsTheSection();
    void separatorInsideQuotesDividesTheLine();
    void everyLineHasItsNumberAndItsPart();
    void hugeLinesTakeLinearTime_data();
    void hugeLinesTakeLinearTime();
};

void TestConfigText::takesWhatTheExpressionsTake()
{
    std::mt19937 engine(20260305);
    int filled = 0;
    for (int round = 0; round < 40000; ++round) {
        const QString text = randomText(engine);
        const ConfigText expected = byExpressions(text);
        filled += expected.isEmpty() ? 0 : 1;
        if (parseConfigText(text) != expected) {
            QFAIL(qPrintable(QString("differs for: %1")
                                 .arg(QString(text.toUtf8().toPercentEncoding(" =[]\"")))));
        }
    }
    QVERIFY2(filled > 1000, "the random texts hardly ever hold a section");
}

void TestConfigText::sectionWithoutAKeyLineIsLost()
{
    const ConfigText text = parseConfigText("[A]\nno key\nx = 1\n[B]\ny = 2\n");
    QCOMPARE(text.keys(), QStringList{"B"});
}

void TestConfigText::badLineEndsItsSection()
{
    const ConfigText text = parseConfigText("[A]\nx = 1\ny = nan\nz = 3\n");
    QCOMPARE(text.value("A").keys(), QStringList{"x"});
}

void TestConfigText::lastLineNeedsALineEnd()
{
    const ConfigText text = parseConfigText("[A]\nx = 1\ny = 2");
    QCOMPARE(text.value("A").keys(), QStringList{"x"});
}

void TestConfigText::repeatedSectionReplacesTheEarlierOne()
{
    const ConfigText text = parseConfigText("[A]\nx = 1\n[A]\ny = 2\n");
    QCOMPARE(text.value("A").keys(), QStringList{"y"});
}

void TestConfigText::emptyQuotedValueIsAbsent()
{
    const ConfigText text = parseConfigText("[A]\nx = \"\"\ny = 1\n");
    QCOMPARE(text.value("A").keys(), QStringList{"y"});
}

void TestConfigText::numbersOfEveryFormAreTaken()
{
    for (const char* number : {"7", "-12", "0.25", "-3.50", "1e+5", "2E-07", "4.5e|3", "-1E|12"}) {
        const ConfigText text = parseConfigText(QString("[A]\nx = %1\n").arg(number));
        QCOMPARE(text.value("A").value("x"), QString(number));
    }
}

// An exponent has a sign; a bar stands for one too.
void TestConfigText::whatIsNearlyANumberEndsTheSection()
{
    for (const char* other : {"1e5", "1E05", "1ab5", "1-5", "1x+5", "1e+", "1e", "1.", ".5", "+1",
                              "--1", "-", "1 ", " 1", "1.5.2", "1e+5e", "e+5"}) {
        const ConfigText text = parseConfigText(QString("[A]\nx = %1\ny = 2\n").arg(other));
        QVERIFY2(!text.contains("A"), other);
    }
}

void TestConfigText::separatorInsideQuotesDividesTheLine()
{
    const ConfigText text = parseConfigText("[A]\nI File = \"/a = 5/b\"\n");
    QCOMPARE(text.value("A").value("I File = \"/a"), QString("5"));
}

void TestConfigText::everyLineHasItsNumberAndItsPart()
{
    using Role = ConfigLine::Role;
    const QVector<ConfigLine> lines =
        configLines("\nx = 1\r\n\r\n[A]\nx = 1\nText = \"\"\n[B]\ny = 2");
    const struct
    {
        int number;
        Role role;
        const char* section;
        const char* key;
    } expected[] = {
        {2, Role::Other, "", ""}, {4, Role::Section, "A", ""}, {5, Role::Key, "A", "x"},
        {6, Role::Key, "A", ""},  {7, Role::Other, "", ""}, // nothing below it is read
        {8, Role::Other, "", ""},                           // not ended
    };
    QCOMPARE(lines.size(), int(std::size(expected)));
    for (int i = 0; i < lines.size(); ++i) {
        QCOMPARE(lines.at(i).number, expected[i].number);
        QCOMPARE(lines.at(i).role, expected[i].role);
        QCOMPARE(lines.at(i).section, QString(expected[i].section));
        QCOMPARE(lines.at(i).key, QString(expected[i].key));
    }
}

void TestConfigText::hugeLinesTakeLinearTime_data()
{
    QTest::addColumn<QString>("unit");
    QTest::newRow("brackets") << "[";
    QTest::newRow("closed brackets") << "[]";
    QTest::newRow("separators") << " = ";
    QTest::newRow("quotes") << "\"";
    QTest::newRow("quoted values") << "a = \"";
    QTest::newRow("numbers") << "1 = 1";
    QTest::newRow("zeros") << QString(QChar(0));
}

// Quadratic work on 4 million characters would not end within the time of a test.
void TestConfigText::hugeLinesTakeLinearTime()
{
    QFETCH(QString, unit);
    const QString line = unit.repeated(4000000 / unit.size());
    QVERIFY(parseConfigText(line).size() <= 1);
    QVERIFY(parseConfigText("[A]\n" + line + "\n").size() <= 1);
    QVERIFY(parseConfigText("[A]\n" + line + "\"\n" + line + " = 1\n").size() <= 1);
}

QTEST_APPLESS_MAIN(TestConfigText)
#include "test_config_text.moc"
