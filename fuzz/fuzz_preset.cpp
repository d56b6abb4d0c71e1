// What the instruments of a chain answer while they are set up and measured with: one line of an
// input an answer, in the order of asking. The first byte is the microwave generator's model.
#include "fuzz/input_file.h"
#include "instruments/analyzer.h"
#include "instruments/microwave_generator.h"
#include "instruments/signal_generator.h"
#include "remote/analyzer_commands.h"
#include "remote/device_text.h"
#include "remote/generator_commands.h"
#include "remote/ko_remote_exception.h"

#include <QByteArrayList>

#include <cstdlib>
#include <memory>

namespace {

// Shared by all instruments, each of which has a transport of its own.
struct Answers
{
    QByteArrayList left;
    int commands = 0;
};

class AnsweringTransport : public KORemoteInterface
{
public:
    explicit AnsweringTransport(Answers& allAnswers) : answers(allAnswers) {}

    void sendSCPI(const QString& command) override
    {
        if (command.isEmpty() || command.chopped(1).contains(QLatin1Char('\n')) ||
            command.contains(QLatin1String("nan"))) {
            std::abort(); // no answer may get into a command
        }
        ++answers.commands;
    }
    QString querySCPI(const QString& command) override
    {
        sendSCPI(command);
        if (answers.left.isEmpty()) {
            throw new KORemoteException(QStringLiteral("No answer"));
        }
        return DeviceText::answerFrom(answers.left.takeFirst());
    }
    void open() override {}
    void close() override {}
    void goToLocal() override {}

private:
    Answers& answers;
};

template <class Commands, class... Model>
void connectAndSet(const Instrument& instrument, Answers& answers, Model... model)
{
    instrument.link()->setRemote(
        std::make_shared<Commands>(std::make_unique<AnsweringTransport>(answers), model...));
    instrument.link()->setInitialized();
    instrument.setup();
}

void measure(const Analyzer& analyzer)
{
    try {
        analyzer.commands()->presetChannelPower(analyzer.level);
        (void)analyzer.commands()->measureChannelPower();
        (void)analyzer.commands()->readChannelPower();
    } catch (KORemoteException* failure) {
        const std::unique_ptr<KORemoteException> owned(failure);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int models = 16;
    if (size == 0) {
        return 0;
    }
    Answers answers;
    answers.left = bytesOf(data + 1, size - 1).split('\n');
    const Analyzer analyzer;
    const SignalGenerator generator;
    const MicrowaveGenerator microwave;
    connectAndSet<AnalyzerCommands>(analyzer, answers);
    connectAndSet<GeneratorCommands>(generator, answers, 0);
    connectAndSet<GeneratorCommands>(microwave, answers, data[0] % models);
    measure(analyzer);
    if (answers.commands == 0 || generator.deviceMessage().isNull()) { // who is there, or why not
        std::abort();
    }
    return 0;
}
