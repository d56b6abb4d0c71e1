// The status light, painted into an image of 20 x 20 pixels. Its centre is then the point
// (9, 9); the spoke 0 covers the pixels 11 to 13 of row 9, and the spoke 5, half a turn on,
// the pixels 4 to 6 of row 8. No other spoke touches these.
#include "app/status_indicator_widget.h"

#include <QImage>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

const QPoint onSpoke0(12, 9);
const QPoint onSpoke5(5, 8);

QImage painted(StatusIndicatorWidget& light)
{
    QImage image(light.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    light.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

int alphaAt(StatusIndicatorWidget& light, QPoint place)
{
    return painted(light).pixelColor(place).alpha();
}

bool isEmpty(const QImage& image)
{
    QImage blank(image.size(), image.format());
    blank.fill(Qt::transparent);
    return image == blank;
}

void turn(StatusIndicatorWidget& light, int steps)
{
    for (int i = 0; i < steps; ++i) {
        light.rotate();
    }
}

} // namespace

class TestStatusIndicatorWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void aNewLightIsAGreenDot();
    void stateOneIsARedDot();
    void theDotHasARadiusOfFour();
    void anUnknownStateDrawsNothing_data();
    void anUnknownStateDrawsNothing();
    void aSpokeIsAWhiteBarOfThreePixels();
    void aSpokeFadesWithTheStepsSinceItWasBrightest_data();
    void aSpokeFadesWithTheStepsSinceItWasBrightest();
    void theSpokesStandInTurn();
    void tenStepsAreAFullTurn();
    void theWheelTurnsByItselfEvery63Milliseconds();
    void theDotsStopTheWheelAtOnce();
    void aLaterWheelGoesOnFromTheOldStep();
    void startingARunningWheelRestartsItsTimerOnly();
    void anUnknownStateLeavesTheTimerAsItIs();

private:
    QTimer* timer() const { return light->findChild<QTimer*>(); }

    std::unique_ptr<StatusIndicatorWidget> light;
};

void TestStatusIndicatorWidget::init()
{
    light = std::make_unique<StatusIndicatorWidget>();
    light->resize(20, 20);
}

void TestStatusIndicatorWidget::cleanup()
{
    light.reset();
}

void TestStatusIndicatorWidget::aNewLightIsAGreenDot()
{
    QCOMPARE(painted(*light).pixelColor(9, 9), QColor(0, 255, 0));
    QVERIFY(!timer()->isActive());
}

void TestStatusIndicatorWidget::stateOneIsARedDot()
{
    light->setState(1);
    QCOMPARE(painted(*light).pixelColor(9, 9), QColor(255, 0, 0));
}

void TestStatusIndicatorWidget::theDotHasARadiusOfFour()
{
    const QImage image = painted(*light);
    // The pixel (6, 8) lies 2.5 and 0.5 from the centre, so inside; the pixels 4 and 13 of
    // row 9 lie beyond the two ends of the diameter, and (5, 5) is 4.9 away.
    QCOMPARE(image.pixelColor(6, 8).alpha(), 255);
    QCOMPARE(image.pixelColor(4, 9).alpha(), 0);
    QCOMPARE(image.pixelColor(13, 9).alpha(), 0);
    QCOMPARE(image.pixelColor(5, 5).alpha(), 0);
}

void TestStatusIndicatorWidget::anUnknownStateDrawsNothing_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("above") << 3;
    QTest::newRow("below") << -1;
}

void TestStatusIndicatorWidget::anUnknownStateDrawsNothing()
{
    QFETCH(int, state);
    light->setState(state);
    QVERIFY(isEmpty(painted(*light)));
}

void TestStatusIndicatorWidget::aSpokeIsAWhiteBarOfThreePixels()
{
    light->setState(2);
    const QImage image = painted(*light);
    QCOMPARE(image.pixelColor(10, 9).alpha(), 0);
    for (int x = 11; x <= 13; ++x) {
        QCOMPARE(image.pixelColor(x, 9), QColor(Qt::white));
    }
    QCOMPARE(image.pixelColor(14, 9).alpha(), 0);
}

void TestStatusIndicatorWidget::aSpokeFadesWithTheStepsSinceItWasBrightest_data()
{
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("alpha"); // of 255
    QTest::newRow("brightest, opacity 1") << 0 << 255;
    QTest::newRow("opacity 0.892380") << 1 << 228;
    QTest::newRow("opacity 0.784759") << 2 << 200;
    QTest::newRow("opacity 0.677139") << 3 << 173;
    QTest::newRow("opacity 0.569518") << 4 << 145;
    QTest::newRow("opacity 0.461898") << 5 << 118;
    QTest::newRow("opacity 0.354277") << 6 << 90;
    QTest::newRow("opacity 0.246657") << 7 << 63;
    QTest::newRow("end of the trail, opacity 0.139036") << 8 << 35;
    QTest::newRow("minimum, opacity 0.031416") << 9 << 8;
}

void TestStatusIndicatorWidget::aSpokeFadesWithTheStepsSinceItWasBrightest()
{
    QFETCH(int, steps);
    QFETCH(int, alpha);
    light->setState(2);
    turn(*light, steps);
    // One count of tolerance: the colour and the image round the opacity separately.
    QVERIFY(qAbs(alphaAt(*light, onSpoke0) - alpha) <= 1);
}

void TestStatusIndicatorWidget::theSpokesStandInTurn()
{
    light->setState(2);
    QVERIFY(qAbs(alphaAt(*light, onSpoke5) - 118) <= 1); // five steps behind spoke 0
    turn(*light, 5);
    QCOMPARE(alphaAt(*light, onSpoke5), 255);
    turn(*light, 1);
    QVERIFY(qAbs(alphaAt(*light, onSpoke5) - 228) <= 1);
}

void TestStatusIndicatorWidget::tenStepsAreAFullTurn()
{
    light->setState(2);
    const QImage before = painted(*light);
    turn(*light, 9);
    QVERIFY(painted(*light) != before);
    turn(*light, 1);
    QCOMPARE(painted(*light), before);
}

void TestStatusIndicatorWidget::theWheelTurnsByItselfEvery63Milliseconds()
{
    QCOMPARE(timer()->interval(), 63);
    light->setState(2);
    QTRY_VERIFY(alphaAt(*light, onSpoke0) < 255);
}

void TestStatusIndicatorWidget::theDotsStopTheWheelAtOnce()
{
    for (const int dot : {0, 1}) {
        light->setState(2);
        QVERIFY(timer()->isActive());
        light->setState(dot);
        QVERIFY(!timer()->isActive());
        QCOMPARE(alphaAt(*light, QPoint(9, 9)), 255);
    }
}

void TestStatusIndicatorWidget::aLaterWheelGoesOnFromTheOldStep()
{
    light->setState(2);
    turn(*light, 3);
    light->setState(0);
    light->setState(2);
    QVERIFY(qAbs(alphaAt(*light, onSpoke0) - 173) <= 1);
}

void TestStatusIndicatorWidget::startingARunningWheelRestartsItsTimerOnly()
{
    // A long, precise interval, so that no step falls into the test.
    timer()->setTimerType(Qt::PreciseTimer);
    timer()->setInterval(60000);
    light->setState(2);
    turn(*light, 4);
    const QImage before = painted(*light);
    QTRY_VERIFY(timer()->remainingTime() < 59900);
    const int remaining = timer()->remainingTime();
    light->setState(2);
    QVERIFY(timer()->remainingTime() > remaining);
    QCOMPARE(painted(*light), before);
}

void TestStatusIndicatorWidget::anUnknownStateLeavesTheTimerAsItIs()
{
    light->setState(3);
    QVERIFY(!timer()->isActive());
    light->setState(2);
    light->setState(3);
    QVERIFY(timer()->isActive());
    QVERIFY(isEmpty(painted(*light)));
}

QTEST_MAIN(TestStatusIndicatorWidget)
#include "test_status_indicator_widget.moc"
