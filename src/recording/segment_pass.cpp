#include "recording/segment_pass.h"

#include "base/parallel.h"
#include "recording/hash_check.h"
#include "transform/complex_buffer.h"

#include <algorithm>
#include <memory>

namespace {

constexpr qint64 stretchSamples = 1 << 17; // worth a piece of work
constexpr qint64 blockSamples = 1 << 15;   // read at once
constexpr qint64 sumsBudget = 1 << 26;     // bytes that the stretches of a round may take

bool isLong(qint64 length)
{
    constexpr qint64 longOne = 1 << 20;
    return length >= longOne;
}

class Pass
{
public:
    Pass(const SampleReader& itsReader, const Segments& itsSegments, std::size_t itsSumCount,
         const AddSegment& itsAdd)
        : reader(itsReader),
          type(*itsReader.recording().type),
          segments(itsSegments),
          sumCount(itsSumCount),
          add(itsAdd),
          perStretch(std::max<qint64>(1, stretchSamples / segments.hop)),
          stretchCount((segments.count + perStretch - 1) / perStretch)
    {
    }

    PassResult run(const ReadingProgress& progress) const;

private:
    // What a thread reads into. Between the parts lie some values more, or equal places of both
    // would fall on the same lines of the cache.
    class Scratch
    {
    public:
        explicit Scratch(qint64 samples)
            : imaginary(static_cast<quint64>(samples + apart)), values(imaginary)
        {
        }
        Split segment()
        {
            auto* const parts = reinterpret_cast<double*>(values.data());
            return {parts, parts + imaginary};
        }

        // Of so many samples. Segments overlap, so that what lies behind them is read with them.
        const char* raw(const SampleReader& reader, qint64 first, qint64 count)
        {
            if (first < readFirst || first + count > readFirst + readCount) {
                const qint64 left = reader.recording().samples - first;
                readFirst = first;
                readCount = std::max(count, std::min(blockSamples, left));
                reader.read(readFirst, readCount, bytes);
            }
            return bytes.data() + (first - readFirst) * reader.recording().type->bytes;
        }

    private:
        static constexpr qint64 apart = 32;
        const quint64 imaginary;
        ComplexBuffer values;
        std::vector<char> bytes;
        qint64 readFirst = 0;
        qint64 readCount = 0;
    };

    qint64 stretchesPerRound() const;
    PassResult emptyResult() const { return {std::vector<double>(sumCount), LevelSums(type)}; }
    std::vector<PassResult> round(qint64 firstStretch, qint64 count, HashCheck& hash) const;
    void addStretch(qint64 stretch, Scratch& scratch, PassResult& result) const;
    void load(qint64 first, qint64 count, Scratch& scratch) const;
    void requireNumbers(const LevelSums& levels, qint64 stretch) const;

    const SampleReader& reader;
    const SampleType& type;
    const Segments segments;
    const std::size_t sumCount;
    const AddSegment& add;
    const qint64 perStretch; // segments that are summed by themselves
    const qint64 stretchCount;
};

qint64 Pass::stretchesPerRound() const
{
    constexpr qint64 most = 64;
    const auto bytes = static_cast<qint64>(std::max<std::size_t>(1, sumCount) * sizeof(double));
    return std::clamp<qint64>(sumsBudget / bytes, usefulThreads(), most);
}

void Pass::load(qint64 first, qint64 count, Scratch& scratch) const
{
    for (qint64 done = 0; done < count; done += blockSamples) {
        const qint64 now = std::min(blockSamples, count - done);
        type.toParts(scratch.raw(reader, first + done, now), now,
                     scratch.segment().at(static_cast<quint64>(done)));
    }
}

void Pass::requireNumbers(const LevelSums& levels, qint64 stretch) const
{
    if (!levels.isFinite()) {
        const qint64 first = segments.first + stretch * perStretch * segments.hop;
        throw RecordingError{QStringLiteral("%1 holds a value that is not finite or too large, "
                                            "after sample %2")
                                 .arg(reader.recording().name)
                                 .arg(first)};
    }
}

// Each sample counts once in the levels: a segment's up to the next one's begin, the last one's
// all, and those behind it.
void Pass::addStretch(qint64 stretch, Scratch& scratch, PassResult& result) const
{
    const Split segment = scratch.segment();
    const qint64 end = std::min((stretch + 1) * perStretch, segments.count);
    for (qint64 k = stretch * perStretch; k < end; ++k) {
        const qint64 first = segments.first + k * segments.hop;
        const bool isLast = k + 1 == segments.count;
        load(first, segments.length, scratch);
        result.levels.add(segment.re, segment.im, isLast ? segments.length : segments.hop);
        add(segment, result.sums.data());
        if (isLast) {
            const qint64 behind = first + segments.length;
            const qint64 count = reader.recording().samples - behind; // less than a hop
            load(behind, count, scratch);
            result.levels.add(segment.re, segment.im, count);
        }
    }
    requireNumbers(result.levels, stretch);
}

// The hash is one more piece, the first one.
std::vector<PassResult> Pass::round(qint64 firstStretch, qint64 count, HashCheck& hash) const
{
    const bool oneByOne = isLong(segments.length);
    std::vector<PassResult> results(static_cast<std::size_t>(count), emptyResult());
    const auto worker = [&](Pieces& pieces) {
        const std::unique_ptr<WorkAlone> alone = oneByOne ? nullptr : std::make_unique<WorkAlone>();
        Scratch scratch(segments.length);
        for (quint64 piece = 0; pieces.take(piece);) {
            if (piece == 0) {
                hash.advance(firstStretch + count, stretchCount);
                continue;
            }
            addStretch(firstStretch + static_cast<qint64>(piece) - 1, scratch, results[piece - 1]);
        }
    };
    inParallel(static_cast<quint64>(count) + 1, oneByOne ? 1 : usefulThreads(), worker);
    return results;
}

PassResult Pass::run(const ReadingProgress& progress) const
{
    PassResult total = emptyResult();
    HashCheck hash(reader.recording());
    const qint64 perRound = stretchesPerRound();
    for (qint64 done = 0; done < stretchCount;) {
        const qint64 now = std::min(perRound, stretchCount - done);
        for (const PassResult& part : round(done, now, hash)) {
            std::transform(part.sums.begin(), part.sums.end(), total.sums.begin(),
                           total.sums.begin(), [](double a, double b) { return b + a; });
            total.levels += part.levels;
        }
        done += now;
        if (!progress(done, stretchCount)) {
            throw ReadingStopped{};
        }
    }
    hash.requireMatch();
    return total;
}

} // namespace

int threadsWithin(qint64 length)
{
    return isLong(length) ? usefulThreads() : 1;
}

Segments segmentsBetween(qint64 first, qint64 end, qint64 length, qint64 hop)
{
    return {first, length, hop, (end - first - length) / hop + 1};
}

PassResult sumSegments(const SampleReader& reader, const Segments& segments, std::size_t sumCount,
                       const AddSegment& add, const ReadingProgress& progress)
{
    return Pass(reader, segments, sumCount, add).run(progress);
}
