#include "curves/made_up_result.h"
#include "curves/notch_switches.h"
#include "curves/result_model.h"
#include "curves/result_texts.h"

#include <QtTest>

class TestResultTexts : public QObject
{
    Q_OBJECT

private slots:
    void peakAndRangeAreThoseOfTheBestAndOfTheWorstNotch();
    void aRangeThatIsNotClosedIsToldAsSuch();
    void oneMissedReadingFails();
    void aNotchThatLiesElsewhereInAnotherResultIsItsNumberAlone();
    void aResultOfTheSameFileTakesItsPlace();
};

namespace {

const QString minus = QChar(0x2212);

} // namespace

void TestResultTexts::peakAndRangeAreThoseOfTheBestAndOfTheWorstNotch()
{
    // Notch 1 peaks at 51 dB and is above 41 dB for 20 dB, notch 3 peaks at 53 dB.
    const NprResult result = roofs(3);
    QCOMPARE(peakText(result), "53.0 dB at " + minus + "20.0 dBm");
    QCOMPARE(rangeText(result), QString("20.0 dB over 41 dB"));
    QCOMPARE(notchCountText(result), QString("3"));
    QCOMPARE(deviceText(result), QString("linear"));
}

void TestResultTexts::aRangeThatIsNotClosedIsToldAsSuch()
{
    QCOMPARE(rangeText(roofs(1, -20.0, 0.0)), QString("not crossed"));
    QCOMPARE(rangeText(NprResult()), QString());
    QCOMPARE(peakText(NprResult()), QString());
}

void TestResultTexts::oneMissedReadingFails()
{
    NprResult result = roofs(1);
    QCOMPARE(verdictText(result), QString());
    applyLimit(result.points, 30.0);
    QCOMPARE(verdictText(result), QString("pass"));
    applyLimit(result.points, 31.5);
    QCOMPARE(verdictText(result), QString("FAIL"));
}

void TestResultTexts::aNotchThatLiesElsewhereInAnotherResultIsItsNumberAlone()
{
    ShownResult one;
    one.result = roofs(2);
    ShownResult other;
    other.result = roofs(3);
    for (NprPoint& point : other.result.points) {
        point.center += point.notch == 2 ? 4e6 : 0.0;
    }
    const QString first = "notch 1, " + minus + "10 MHz";
    QCOMPARE(notchesOf({one, other}),
             (QMap<int, QString>{{1, first}, {2, "notch 2"}, {3, "notch 3, 10 MHz"}}));
    other.isShown = false;
    QCOMPARE(notchesOf({one, other}), (QMap<int, QString>{{1, first}, {2, "notch 2, 0 MHz"}}));
}

void TestResultTexts::aResultOfTheSameFileTakesItsPlace()
{
    ResultModel model;
    ShownResult shown;
    shown.path = "/somewhere/a.json";
    shown.result = roofs(1);
    const int id = model.add(shown);
    shown.result = roofs(2);
    QCOMPARE(model.add(shown), id);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(notchCountText(model.find(id)->result), QString("2"));
    shown.path.clear(); // without files they are all different
    QVERIFY(model.add(shown) != model.add(shown));
    QCOMPARE(model.rowCount(), 3);
}

QTEST_APPLESS_MAIN(TestResultTexts)
#include "test_result_texts.moc"
