#include "app/preset_job.h"

#include "remote/ko_remote_exception.h"

#include <QMutexLocker>
#include <QtConcurrent>

#include <utility>

PresetJob::PresetJob(FailureHandler handler) : onFailure(std::move(handler))
{
    qRegisterMetaType<InstrumentChain>();
}

void PresetJob::start(const std::shared_ptr<PresetJob>& link, const MeasurementSetup& setup)
{
    QtConcurrent::run([link, chain = InstrumentChain{setup.generator, setup.analyzer,
                                                     setup.microwave}] { link->run(chain); });
}

void PresetJob::run(const InstrumentChain& chain)
{
    MeasurementSetup instruments; // without the record's signal
    instruments.generator = chain.generator;
    instruments.analyzer = chain.analyzer;
    instruments.microwave = chain.microwave;
    try {
        instruments.presetInstruments();
    } catch (KORemoteException* failure) {
        tell(failure);
    }
    emit finished(chain, {instruments.generator, instruments.analyzer, instruments.microwave});
}

void PresetJob::forgetWindow()
{
    const QMutexLocker lock(&mutex);
    onFailure = nullptr;
}

void PresetJob::tell(KORemoteException* failure)
{
    const std::unique_ptr<KORemoteException> owned(failure);
    const QMutexLocker lock(&mutex);
    if (onFailure) {
        onFailure(failure);
    }
}
