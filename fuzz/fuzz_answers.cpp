// What an instrument answers: to the adjacent channel power measurement and to the question for
// its options.
#include "fuzz/input_file.h"
#include "remote/analyzer_commands.h"
#include "remote/device_text.h"
#include "remote/generator_commands.h"

#include <memory>

namespace {

class AnsweringTransport : public KORemoteInterface
{
public:
    explicit AnsweringTransport(const QByteArray& bytes) : answer(bytes) {}

    void sendSCPI(const QString& /*command*/) override {}
    QString querySCPI(const QString& /*command*/) override
    {
        return DeviceText::answerFrom(answer);
    }
    void open() override {}
    void close() override {}
    void goToLocal() override {}

private:
    const QByteArray answer;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int modelWithOptions = 11;
    const QByteArray answer = bytesOf(data, size);
    AnalyzerCommands analyzer(std::make_unique<AnsweringTransport>(answer));
    (void)analyzer.measureChannelPower();
    GeneratorCommands generator(std::make_unique<AnsweringTransport>(answer), modelWithOptions);
    generator.setIfInput(true);
    generator.setOutputAttenuation(10.0);
    return 0;
}
