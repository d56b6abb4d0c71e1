#include "measurement/preset.h"

#include "base/worker_threads.h"
#include "measurement/require_commands.h"
#include "remote/ko_remote_exception.h"
#include "setup/measurement_setup.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

struct Step
{
    const Instrument* instrument;
    std::function<void()> conversation;
};

// init() keeps its own failures in the device message. Deliberate: the guard stays as a second
// line of defence for one that comes from outside of its sequence.
Step initStep(const Instrument& instrument, const char* report)
{
    return {&instrument, [&instrument, report] {
                try {
                    instrument.init();
                } catch (KORemoteException* failure) {
                    takeMessage(failure);
                    throwRemoteException(QLatin1String(report));
                }
            }};
}

Step setupStep(const Instrument& instrument)
{
    return {&instrument, [&instrument] { instrument.setup(); }};
}

Step measurementStep(const Analyzer& analyzer)
{
    return {&analyzer,
            [&analyzer] { requireCommands(analyzer)->presetChannelPower(analyzer.level); }};
}

// In the settled order between the instruments.
std::vector<Step> stepsOf(const InstrumentChain& chain)
{
    const bool hasMicrowave = chain.microwave.device != 0;
    std::vector<Step> steps = {initStep(chain.analyzer, "Analyzer cannot be found."),
                               initStep(chain.generator, "Signal Generator cannot be found.")};
    if (hasMicrowave) {
        steps.push_back(initStep(chain.microwave, "Microwave cannot be found."));
    }
    steps.push_back(setupStep(chain.analyzer));
    steps.push_back(setupStep(chain.generator));
    if (hasMicrowave) {
        steps.push_back(setupStep(chain.microwave));
    }
    steps.push_back(measurementStep(chain.analyzer));
    return steps;
}

void presetAndTell(const InstrumentChain& chain, LinkTurn analyzersTurn,
                   const std::function<void(KORemoteException*)>& failed)
{
    try {
        presetInstruments(chain, std::move(analyzersTurn));
    } catch (KORemoteException* failure) {
        const std::unique_ptr<KORemoteException> owned(failure);
        if (!chain.analyzer.link()->isRetired()) { // or else nobody sees this record any more
            failed(failure);
        }
    } catch (const std::exception&) {
        chain.analyzer.link()->fail(QStringLiteral("Not enough memory"));
    }
}

} // namespace

void presetInstruments(const InstrumentChain& chain, LinkTurn analyzersTurn)
{
    LinkTurn turn = std::move(analyzersTurn);
    for (const Step& step : stepsOf(chain)) {
        if (!turn) {
            turn = step.instrument->link()->takeTurn();
        }
        if (!turn) {
            return;
        }
        step.conversation();
        turn.giveBack();
    }
}

void presetInBackground(const InstrumentChain& chain,
                        const std::function<void(KORemoteException*)>& failed)
{
    const auto turn = std::make_shared<LinkTurn>();
    const std::function<void()> preset = [chain, turn, failed] {
        presetAndTell(chain, std::move(*turn), failed);
    };
    chain.analyzer.link()->ask([turn, preset, link = chain.analyzer.link()](LinkTurn given) {
        *turn = std::move(given);
        if (*turn && !WorkerThreads::ofProcess().start(preset)) {
            link->fail(QStringLiteral("No thread for the instrument"));
            turn->giveBack();
        }
    });
}

void MeasurementSetup::presetInstruments() const
{
    ::presetInstruments({generator, analyzer, microwave}, analyzer.link()->takeTurn());
}
