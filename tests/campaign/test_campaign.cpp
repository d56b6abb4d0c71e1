// The order of a campaign, and that what was measured always comes back. The bench of these tests
// writes down what it is asked for.
#include "campaign/campaign.h"

#include <QSignalSpy>
#include <QtTest>

#include <atomic>

namespace {

class WrittenBench : public Bench
{
public:
    explicit WrittenBench(int stimuliPlayed = 1) : stimuli(stimuliPlayed) {}

    int stimulusCount(int /*averages*/) const override { return stimuli; }
    void prepare(const CampaignPlan& /*plan*/) override { log << "prepare"; }
    void play(int stimulus) override { log << QString("play %1").arg(stimulus); }
    void setLevel(double dbm) override { log << QString("level %1").arg(dbm); }
    void tune(const NumberedNotch& notch) override { log << QString("notch %1").arg(notch.number); }
    BenchReading read() override
    {
        log << "read";
        if (++readings == failsAt) {
            throw BenchFailure("Analyzer 127.0.0.1: gone");
        }
        if (readings == exhaustsAt) {
            throw std::bad_alloc();
        }
        return {101.0, 1.0, false, {}};
    }
    QString finish() override
    {
        log << "finish";
        return farewell;
    }
    BenchNames names() const override { return {{}, "G", "A"}; }
    QVector<quint32> seeds() const override { return {7}; }

    int stimuli;
    int failsAt = 0;
    int exhaustsAt = 0;
    QString farewell;
    QStringList log;
    int readings = 0;
};

CampaignPlan plan(int averages = 1)
{
    CampaignPlan made;
    made.levels = {-20.0, -10.0};
    made.averages = averages;
    for (int number = 1; number <= 2; ++number) {
        NumberedNotch notch;
        notch.number = number;
        notch.notch.center = number * 1e6;
        notch.notch.width = 1e5;
        notch.lines = 100;
        made.notches << notch;
    }
    return made;
}

QStringList words(const char* text)
{
    return QString(text).split(", ");
}

} // namespace

class TestCampaign : public QObject
{
    Q_OBJECT

private slots:
    void readingsOfAPointFollowEachOtherOnOneStimulus();
    void eachStimulusIsPlayedAtAllLevels();
    void pointsComeByLevelAndNotch();
    void aFailureGivesBackWhatWasMeasured();
    void exhaustedMemoryIsAFailureLikeAnyOther();
    void anInterruptionEndsAfterTheReadingInProgress();
    void aSettlingTimeIsCutShort();
    void aBenchThatCannotBeLeftWarns();
    void theBackgroundDeliversInTheMainThread();
    void theBackgroundCanBeInterrupted();
};

void TestCampaign::readingsOfAPointFollowEachOtherOnOneStimulus()
{
    WrittenBench bench;
    const CampaignOutcome outcome = runCampaign(plan(2), bench, Interruption());
    QCOMPARE(bench.log,
             words("prepare, play 0, level -20, notch 1, read, read, notch 2, read, read, "
                   "level -10, notch 1, read, read, notch 2, read, read, finish"));
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Done);
    QVERIFY(outcome.failure.isEmpty() && outcome.warning.isEmpty());
    QCOMPARE(outcome.bench.analyzer, QString("A"));
    QCOMPARE(outcome.seeds, QVector<quint32>{7});
}

void TestCampaign::eachStimulusIsPlayedAtAllLevels()
{
    WrittenBench bench(2);
    (void)runCampaign(plan(2), bench, Interruption());
    QCOMPARE(bench.log,
             words("prepare, play 0, level -20, notch 1, read, notch 2, read, level -10, "
                   "notch 1, read, notch 2, read, play 1, level -20, notch 1, read, "
                   "notch 2, read, level -10, notch 1, read, notch 2, read, finish"));
}

void TestCampaign::pointsComeByLevelAndNotch()
{
    WrittenBench bench;
    QVector<CampaignProgress> told;
    const CampaignOutcome outcome =
        runCampaign(plan(), bench, Interruption(),
                    [&told](const CampaignProgress& progress) { told << progress; });
    QCOMPARE(outcome.points.size(), 4);
    QCOMPARE(outcome.points[1].level, -20.0);
    QCOMPARE(outcome.points[1].notch, 2);
    QCOMPARE(outcome.points[2].level, -10.0);
    QCOMPARE(outcome.points[2].notch, 1);
    QCOMPARE(*outcome.points[3].npr, 20.0);
    QCOMPARE(told.size(), 4);
    QCOMPARE(told[2].readings, qint64{3});
    QCOMPARE(told[2].total, qint64{4});
    QCOMPARE(told[2].level, -10.0);
    QCOMPARE(told[2].notch, 1);
}

void TestCampaign::aFailureGivesBackWhatWasMeasured()
{
    WrittenBench bench;
    bench.failsAt = 4;
    const CampaignOutcome outcome = runCampaign(plan(), bench, Interruption());
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QCOMPARE(outcome.failure, QString("Analyzer 127.0.0.1: gone"));
    QCOMPARE(outcome.points.size(), 3);
    QCOMPARE(bench.log.constLast(), QString("finish"));
}

void TestCampaign::exhaustedMemoryIsAFailureLikeAnyOther()
{
    WrittenBench bench;
    bench.exhaustsAt = 2;
    const CampaignOutcome outcome = runCampaign(plan(), bench, Interruption());
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QCOMPARE(outcome.failure, QString("Not enough memory"));
    QCOMPARE(outcome.points.size(), 1);
    QCOMPARE(bench.log.constLast(), QString("finish"));
}

void TestCampaign::anInterruptionEndsAfterTheReadingInProgress()
{
    WrittenBench bench;
    Interruption interruption;
    const CampaignOutcome outcome = runCampaign(plan(5), bench, interruption,
                                                [&interruption](const CampaignProgress& progress) {
                                                    if (progress.readings == 7) {
                                                        interruption.raise();
                                                    }
                                                });
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Interrupted);
    QCOMPARE(bench.readings, 7);
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(bench.log.constLast(), QString("finish"));
}

void TestCampaign::aSettlingTimeIsCutShort()
{
    WrittenBench bench;
    CampaignPlan slow = plan();
    slow.settleSeconds = 3600.0;
    Interruption interruption;
    interruption.raise();
    QElapsedTimer clock;
    clock.start();
    interruption.waitFor(slow.settleSeconds);
    QCOMPARE(runCampaign(slow, bench, interruption).ending, CampaignOutcome::Ending::Interrupted);
    QVERIFY(clock.elapsed() < 60000);
}

void TestCampaign::aBenchThatCannotBeLeftWarns()
{
    WrittenBench bench;
    bench.farewell = "Generator 127.0.0.1: not set back";
    const CampaignOutcome outcome = runCampaign(plan(), bench, Interruption());
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Done);
    QCOMPARE(outcome.warning, bench.farewell);
}

void TestCampaign::theBackgroundDeliversInTheMainThread()
{
    const auto bench = std::make_shared<WrittenBench>();
    Campaign campaign;
    qint64 readings = 0;
    QThread* where = nullptr;
    connect(&campaign, &Campaign::progressed, this, [&](const CampaignProgress& progress) {
        readings = progress.readings;
        where = QThread::currentThread();
    });
    QVector<NprPoint> measured;
    connect(&campaign, &Campaign::measured, this,
            [&](const QVector<NprPoint>& points) { measured += points; });
    QSignalSpy finished(&campaign, &Campaign::finished);
    campaign.start(plan(), bench);
    QVERIFY(finished.wait());
    QCOMPARE(campaign.outcome().points.size(), 4);
    QCOMPARE(measured.size(), 4);
    QCOMPARE(measured.constLast().npr, campaign.outcome().points.constLast().npr);
    QCOMPARE(campaign.outcome().ending, CampaignOutcome::Ending::Done);
    QCOMPARE(readings, qint64{4}); // the newest is never lost
    QCOMPARE(where, QCoreApplication::instance()->thread());
}

void TestCampaign::theBackgroundCanBeInterrupted()
{
    const auto bench = std::make_shared<WrittenBench>();
    CampaignPlan slow = plan();
    slow.settleSeconds = 3600.0;
    Campaign campaign;
    QSignalSpy finished(&campaign, &Campaign::finished);
    campaign.start(slow, bench);
    campaign.interrupt();
    QVERIFY(finished.wait());
    QCOMPARE(campaign.outcome().ending, CampaignOutcome::Ending::Interrupted);
    QVERIFY(campaign.outcome().points.isEmpty());
}

QTEST_GUILESS_MAIN(TestCampaign)
#include "test_campaign.moc"
