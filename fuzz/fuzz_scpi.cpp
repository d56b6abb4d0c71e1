// SCPI on its way into the simulator: pieces of a stream, lines, units, all faces of the bench.
// The first byte of an input is the size of the pieces.
#include "fuzz/input_file.h"
#include "simulator/line_buffer.h"
#include "simulator/scpi_session.h"

#include <algorithm>
#include <cstdlib>

namespace {

void carryOut(const ReceivedLine& line, ScpiSession& session)
{
    if (line.text.size() > LineBuffer::longestLine) {
        std::abort();
    }
    for (const ScpiUnit& unit : scpiUnits(line.text)) {
        (void)session.startsSweep(unit);
        (void)ScpiSession::waitsForCompletion(unit);
        (void)ScpiSession::asksForResult(unit);
        session.run(unit);
    }
    (void)session.takeAnswers();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const int pieceSize = std::max<int>(data[0], 1);
    const QByteArray stream = bytesOf(data + 1, size - 1);
    Bench bench{BenchWiring()};
    bench.play({{1.0, -0.5, 0.25, 0.0}, {0.0, 0.5, -0.25, 1.0}, 1e6});
    BenchModels models;
    models.options = "B15,B23";
    for (const BenchFace face : {BenchFace::GeneratorAndAnalyzer, BenchFace::Generator,
                                 BenchFace::Analyzer, BenchFace::Microwave}) {
        SimulatedInstrument instrument(bench, face, models);
        ScpiSession session(instrument);
        LineBuffer lines;
        for (int at = 0; at < stream.size(); at += pieceSize) {
            lines.append(stream.mid(at, pieceSize));
            while (const std::optional<ReceivedLine> line = lines.takeLine()) {
                carryOut(*line, session);
            }
        }
    }
    return 0;
}
