// Result files: what is taken is written, and read again to the same bytes. Its points go the ways
// of "plot", of "--subtract" and of the window of curves.
#include "campaign/npr_curve.h"
#include "campaign/recorded_config.h"
#include "campaign/result_csv.h"
#include "campaign/result_json.h"
#include "campaign/subtraction.h"
#include "fuzz/input_file.h"

#include <algorithm>
#include <cstdlib>

extern "C" { // null without the sanitizer
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's names
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

void require(bool isSo)
{
    if (!isSo) {
        std::abort();
    }
}

// The parser of Qt loses a list or an object whose name comes again beside it.
NprResult readUnwatched(const QByteArray& json)
{
    struct Unwatched
    {
        Unwatched()
        {
            if (__lsan_disable != nullptr) {
                __lsan_disable();
            }
        }
        ~Unwatched()
        {
            if (__lsan_enable != nullptr) {
                __lsan_enable();
            }
        }
    };
    const Unwatched unwatched;
    return resultFromJson(json);
}

QVector<double> thresholdsOf(const NprResult& result)
{
    QVector<double> thresholds;
    for (const NprCurve& curve : result.curves) {
        for (const NprRange& range : curve.ranges) {
            thresholds << range.threshold;
        }
    }
    return thresholds;
}

// A line for each point, and more where a mark that is none of ours has line ends.
void requireTable(const NprResult& result)
{
    const QByteArray table = joinedCsv({{QStringLiteral("a"), result}, {"b, c", result}});
    require(table.startsWith("level_db") && table.count('\n') >= 1 + 2 * result.points.size());
    require(pointsToCsv(result).count('\n') >= 1 + result.points.size());
}

void requireSameFile(const NprResult& result)
{
    const QByteArray json = resultToJson(result);
    require(resultToJson(resultFromJson(json)) == json);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        NprResult result = readUnwatched(bytesOf(data, size));
        requireSameFile(result);
        requireTable(result);
        result.curves = curvesOf(result.points, thresholdsOf(result));
        requireSameFile(result);
        require(subtractBench(QVector<NprPoint>(result.points), result.points).isEmpty());
        applyLimit(result.points, 0.0);
        requireSameFile(result);
        (void)setupOf(result.config);
    } catch (const ResultError& error) {
        require(!error.text.isEmpty());
    }
    return 0;
}
