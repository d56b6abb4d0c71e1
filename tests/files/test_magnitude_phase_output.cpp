// Magnitudes and phases as text: the bytes, and what a reader gets back.
#include "files/magnitude_phase_output.h"
#include "files/signal_input.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <random>

class TestMagnitudePhaseOutput : public QObject
{
    Q_OBJECT

private slots:
    void linesAreIndexPhaseAndMagnitude();
    void everyDoubleComesBack();
    void aFileThatCannotBeOpenedIsTold();

private:
    QTemporaryDir folder;
};

void TestMagnitudePhaseOutput::linesAreIndexPhaseAndMagnitude()
{
    SignalData signal(4);
    signal.phase = {0.0, 1.5, -0.1, 1e-7};
    signal.magnitude = {1.0, 0.5, 0.0, 2.0};
    const QString path = folder.filePath("a.pmc");
    QVERIFY(saveMagnitudePhaseFile(signal, path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("4\n0 0 1\n1 1.5 0.5\n2 -0.1 0\n3 1e-07 2\n"));
}

// Many, so that the text goes to the file in several pieces.
void TestMagnitudePhaseOutput::everyDoubleComesBack()
{
    constexpr int n = 32768;
    std::mt19937_64 engine(1);
    std::uniform_real_distribution<double> phases(-3.2, 3.2);
    SignalData signal(n);
    for (int i = 0; i < n; ++i) {
        signal.phase[i] = phases(engine);
        signal.magnitude[i] = std::exp(10.0 * phases(engine));
    }
    signal.magnitude[7] = std::numeric_limits<double>::denorm_min();
    signal.magnitude[8] = std::numeric_limits<double>::max();
    const QString path = folder.filePath("b.pmc");
    QVERIFY(saveMagnitudePhaseFile(signal, path));
    const SignalData back = loadMagnitudePhaseFile(path);
    QCOMPARE(back.length, n);
    QVERIFY(back.phase == signal.phase); // the same doubles
    QVERIFY(back.magnitude == signal.magnitude);
}

void TestMagnitudePhaseOutput::aFileThatCannotBeOpenedIsTold()
{
    QVERIFY(!saveMagnitudePhaseFile(SignalData(4), folder.filePath("missing/c.pmc")));
}

QTEST_APPLESS_MAIN(TestMagnitudePhaseOutput)
#include "test_magnitude_phase_output.moc"
