// How the words of the command line are taken apart.
#include "cli/arguments.h"
#include "cli/exit_status.h"
#include "cli/values.h"

#include <QtTest>

namespace {

const Options options = {{"levels", "FROM:TO:STEP", "", false},
                         {"threshold", "DB", "", true},
                         {"json", "FILE", "", true},
                         {"quiet", "", "", false}};

Arguments parse(const QStringList& words)
{
    return {words, options};
}

// The failure's text; it must be one of usage.
template <typename Call> QString failureOf(Call call)
{
    try {
        call();
    } catch (const Failure& failure) {
        return failure.status == ExitStatus::WrongUsage ? failure.text : "not of usage";
    }
    return "none";
}

QString failureOfWords(const QStringList& words)
{
    return failureOf([&] { parse(words); });
}

} // namespace

class TestArguments : public QObject
{
    Q_OBJECT

private slots:
    void valuesStandBehindTheirOptionOrItsEqualsSign();
    void valuesMayBeginWithAMinusSign();
    void aRepeatableOptionKeepsItsOrder();
    void aSingleMinusIsNoOption();
    void mistakesAreNamed_data();
    void mistakesAreNamed();
    void numbersAreCheckedWithTheirUnit();
    void optionsThatAreMissingHaveTheirDefault();
};

void TestArguments::valuesStandBehindTheirOptionOrItsEqualsSign()
{
    const Arguments arguments =
        parse({"a.cfg", "--levels", "0:1:1", "--json=x=y", "--quiet", "b.cfg"});
    QCOMPARE(arguments.positional(), (QStringList{"a.cfg", "b.cfg"}));
    QCOMPARE(arguments.value("levels"), QString("0:1:1"));
    QCOMPARE(arguments.value("json"), QString("x=y"));
    QVERIFY(arguments.has("quiet"));
    QVERIFY(!arguments.has("threshold"));
}

void TestArguments::valuesMayBeginWithAMinusSign()
{
    QCOMPARE(parse({"--levels", "-40:-10:1"}).value("levels"), QString("-40:-10:1"));
    QCOMPARE(parse({"--levels=-40:-10:1"}).value("levels"), QString("-40:-10:1"));
    QCOMPARE(parse({"--json", "-"}).value("json"), QString("-"));
}

void TestArguments::aRepeatableOptionKeepsItsOrder()
{
    QCOMPARE(parse({"--threshold", "41", "--quiet", "--threshold=30"}).values("threshold"),
             (QStringList{"41", "30"}));
}

void TestArguments::aSingleMinusIsNoOption()
{
    QCOMPARE(parse({"-"}).positional(), QStringList{"-"});
}

void TestArguments::mistakesAreNamed_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");
    QTest::newRow("unknown") << QStringList{"--treshold", "1"}
                             << "unknown option --treshold; did you mean --threshold?";
    QTest::newRow("one dash") << QStringList{"-q"} << "unknown option -q; options have two dashes";
    QTest::newRow("twice") << QStringList{"--levels", "1", "--levels", "2"}
                           << "--levels is given twice";
    QTest::newRow("no value") << QStringList{"--levels"}
                              << "--levels needs a value: --levels FROM:TO:STEP";
    QTest::newRow("empty value") << QStringList{"--json="} << "--json needs a value: --json FILE";
    QTest::newRow("empty word") << QStringList{"--json", ""} << "--json needs a value: --json FILE";
    QTest::newRow("next option") << QStringList{"--levels", "--quiet"}
                                 << "--levels needs a value: --levels FROM:TO:STEP";
    QTest::newRow("surplus value") << QStringList{"--quiet=yes"} << "--quiet takes no value";
}

void TestArguments::mistakesAreNamed()
{
    QFETCH(QStringList, words);
    QFETCH(QString, text);
    QCOMPARE(failureOfWords(words), text);
}

void TestArguments::numbersAreCheckedWithTheirUnit()
{
    const Range range{-1.0, 100.0, "dB"};
    QCOMPARE(numberOf("-0.5", "--limit", range), -0.5);
    for (const char* wrong : {"x", "", "1,5", "nan", "inf", "100.1", "-2", "3dB"}) {
        QCOMPARE(failureOf([&] { numberOf(wrong, "--limit", range); }),
                 QString("--limit takes a number from -1 to 100 dB, not \"%1\"").arg(wrong));
    }
    QCOMPARE(wholeNumberOf("7", "--average", 1, 9), 7);
    for (const char* wrong : {"0", "10", "1.5", "1e0"}) {
        QCOMPARE(failureOf([&] { wholeNumberOf(wrong, "--average", 1, 9); }),
                 QString("--average takes a whole number from 1 to 9, not \"%1\"").arg(wrong));
    }
}

void TestArguments::optionsThatAreMissingHaveTheirDefault()
{
    const Range range{0.0, 100.0, "dB"};
    QCOMPARE(numberOr(parse({}), "threshold", range, 41.0), 41.0);
    QCOMPARE(numberOr(parse({"--threshold", "30"}), "threshold", range, 41.0), 30.0);
    QCOMPARE(wholeNumberOr(parse({"--threshold", "3"}), "threshold", 0, 9, 1), 3);
}

QTEST_APPLESS_MAIN(TestArguments)
#include "test_arguments.moc"
