// The same campaign over real sockets against the simulated instruments, which speak two dialects,
// and in the process.
#include "campaign/campaign.h"
#include "campaign/instrument_bench.h"
#include "campaign/simulated_bench.h"
#include "kit/device_chains.h"
#include "kit/simulator_process.h"
#include "setup/notch_editing.h"
#include "status/status_server.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

MeasurementSetup setupFor(quint32 generatorRow)
{
    MeasurementSetup setup;
    setup.nbwSrate = 0.8;
    setup.fftLengthIndex = 7;
    setup.notchCount = 3;
    setup.notchWidth = 2e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    setup.generator.device = generatorRow;
    setup.generator.ipAddress = "127.0.0.2";
    setup.generator.frequency = 1e9;
    setup.analyzer.ipAddress = "127.0.0.3";
    setup.analyzer.frequency = 1e9;
    setup.calculateSignal();
    setup.setDataState(DataState::Valid);
    return setup;
}

CampaignPlan planOf(const MeasurementSetup& setup)
{
    CampaignPlan plan;
    plan.levels = levelSteps(-12.0, -2.0, 2.0);
    plan.notches = numberedNotches(setup, setup.signal.length);
    plan.averages = 2;
    return plan;
}

} // namespace

class TestCampaignOverSockets : public QObject
{
    Q_OBJECT

private slots:
    void bothBenchesAgree_data();
    void bothBenchesAgree();
};

void TestCampaignOverSockets::bothBenchesAgree_data()
{
    QTest::addColumn<quint32>("row");
    QTest::addColumn<QString>("type");
    QTest::newRow("ALTAIR") << 2U << "ALTAIR";
    QTest::newRow("PHD(B)") << 6U << "PHD(B)";
}

void TestCampaignOverSockets::bothBenchesAgree()
{
    QFETCH(quint32, row);
    QFETCH(QString, type);
    MeasurementSetup setup = setupFor(row);
    QObject parent;
    StatusServer server(setup, &parent);
    server.listen(0);
    SimulatorProcess simulator(server.port(),
                               {"--generator", "127.0.0.2", "--analyzer", "127.0.0.3",
                                "--generator-type", type, "--dut", "rapp", "--saturation", "0"});
    QVERIFY(simulator.isReady());
    QVERIFY(simulator.logs("playing"));
    Campaign campaign;
    QSignalSpy finished(&campaign, &Campaign::finished);
    campaign.start(planOf(setup), std::make_shared<InstrumentBench>(setup));
    QVERIFY(finished.wait(60000));
    const CampaignOutcome& overSockets = campaign.outcome();
    QVERIFY2(overSockets.ending == CampaignOutcome::Ending::Done, qPrintable(overSockets.failure));
    QVERIFY2(overSockets.warning.isEmpty(), qPrintable(overSockets.warning));
    QVERIFY(simulator.refusals().isEmpty());

    CampaignPlan plan = planOf(setup);
    plan.averages = 1;
    SimulatedBench bench(setup.forOtherThread(), chainOf("rapp"), "rapp");
    const CampaignOutcome inProcess = runCampaign(plan, bench, Interruption());
    QCOMPARE(overSockets.points.size(), 18);
    QCOMPARE(inProcess.points.size(), 18);
    for (int k = 0; k < 18; ++k) {
        const NprPoint& far = overSockets.points[k];
        const NprPoint& near = inProcess.points[k];
        QCOMPARE(far.notch, near.notch);
        QCOMPARE(far.level, near.level);
        QVERIFY(far.sigma && *far.sigma > 0.0 && *far.sigma < 0.5);
        QVERIFY2(std::abs(*far.npr - *near.npr) < 3.0 * *near.sigma,
                 qPrintable(QString("%1 and %2 dB").arg(*far.npr).arg(*near.npr)));
        QVERIFY(std::abs(far.power - near.power) < 0.05);
        QVERIFY(!far.marks.contains(PointMark::overload));
    }
    QCOMPARE(overSockets.seeds, QVector<quint32>{1});
    QVERIFY(!overSockets.bench.simulated);
    QVERIFY(overSockets.bench.generator.contains(type.left(3)));
}

QTEST_GUILESS_MAIN(TestCampaignOverSockets)
#include "test_campaign_over_sockets.moc"
