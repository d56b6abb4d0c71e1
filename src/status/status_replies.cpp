#include "status/status_replies.h"

#include "files/float_samples.h"
#include "setup/measurement_setup.h"

#include <QtEndian>

#include <cstring>

namespace {

enum class Tag : quint32 {
    SymbolRate = 0,
    SequenceLength = 1,
    Symbols = 2,
    NewState = 3,
    ServerIdentity = 4
};

constexpr int wordSize = 4;

void putTag(char* to, Tag tag)
{
    qToLittleEndian(static_cast<quint32>(tag), to);
}

void putFloat(char* to, double value)
{
    qToLittleEndian(static_cast<float>(value), to);
}

QByteArray record(Tag tag, double value)
{
    QByteArray bytes(2 * wordSize, Qt::Uninitialized);
    putTag(bytes.data(), tag);
    putFloat(bytes.data() + wordSize, value);
    return bytes;
}

QByteArray symbolRate(const MeasurementSetup& setup)
{
    return record(Tag::SymbolRate, setup.sampleRate);
}

QByteArray sequenceLength(const MeasurementSetup& setup)
{
    return record(Tag::SequenceLength, setup.fftLength());
}

QByteArray takeNewState(MeasurementSetup& setup)
{
    const bool isNew = setup.newDataFlag;
    setup.newDataFlag = false;
    return record(Tag::NewState, isNew ? 1.0 : 0.0);
}

QByteArray serverIdentity()
{
    constexpr int blockSize = 100;
    QByteArray block(blockSize, '\0');
    putTag(block.data(), Tag::ServerIdentity);
    const char text[] = "Noise Power Ratio";
    std::memcpy(block.data() + wordSize, text, sizeof(text));
    return block;
}

QByteArray newState(MeasurementSetup& setup)
{
    const bool isNew = setup.newDataFlag;
    QByteArray reply = takeNewState(setup);
    if (isNew) {
        reply += symbolRate(setup) + sequenceLength(setup) + symbolBlock(setup.signal);
    }
    return reply;
}

struct Request
{
    const char* word;
    QByteArray (*reply)(MeasurementSetup& setup);
};

// In order of matching: "GetSymbolRate" begins with "GetSymbol".
const Request requests[] = {
    {"GetServerID", [](MeasurementSetup&) { return serverIdentity(); }},
    {"GetNewState", [](MeasurementSetup& setup) { return newState(setup); }},
    {"GetSequenceLength", [](MeasurementSetup& setup) { return sequenceLength(setup); }},
    {"GetSymbolRate", [](MeasurementSetup& setup) { return symbolRate(setup); }},
    {"GetSymbol", [](MeasurementSetup& setup) { return symbolBlock(setup.signal); }},
};

} // namespace

QByteArray greeting(MeasurementSetup& setup)
{
    return takeNewState(setup) + sequenceLength(setup) + symbolRate(setup);
}

QByteArray replyTo(const QString& request, MeasurementSetup& setup)
{
    for (const Request& known : requests) {
        if (request.startsWith(QLatin1String(known.word))) {
            return known.reply(setup);
        }
    }
    return {};
}

QByteArray symbolBlock(const SignalData& signal)
{
    const int count = sampleCount(signal);
    QByteArray block(wordSize + count * floatSampleSize, Qt::Uninitialized);
    putTag(block.data(), Tag::Symbols);
    putFloatSamples(signal, 0, count, block.data() + wordSize);
    return block;
}
