#include "app/preset_job.h"

#include "remote/ko_remote_exception.h"

#include <QtConcurrent>

namespace {

// The instruments' side of the record, without its signal.
MeasurementSetup instrumentsOf(const MeasurementSetup& setup)
{
    MeasurementSetup instruments;
    instruments.generator = setup.generator;
    instruments.analyzer = setup.analyzer;
    instruments.microwave = setup.microwave;
    return instruments;
}

} // namespace

PresetJob::PresetJob()
{
    qRegisterMetaType<InstrumentChain>();
}

void PresetJob::start(const std::shared_ptr<PresetJob>& link, const MeasurementSetup& setup)
{
    QtConcurrent::run([link, chain = instrumentsOf(setup)]() mutable {
        try {
            chain.presetInstruments();
        } catch (KORemoteException* failure) {
            emit link->failed(failure);
        }
        emit link->finished({chain.generator, chain.analyzer, chain.microwave});
    });
}
