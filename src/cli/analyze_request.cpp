#include "cli/analyze_request.h"

#include "cli/exit_status.h"
#include "cli/result_input.h"
#include "cli/result_output.h"
#include "cli/theory_argument.h"
#include "cli/values.h"
#include "recording/sample_type.h"

namespace {

void checkFiles(const AnalyzeRequest& request)
{
    if (request.files.isEmpty()) {
        failUsage(QStringLiteral("analyze needs a recording behind CONFIG"));
    }
    if (!request.levels.isEmpty() && request.levels.size() != request.files.size()) {
        failUsage(QStringLiteral("--level is given %1 times for %2 recordings; give it once for "
                                 "each, in their order, or not at all")
                      .arg(request.levels.size())
                      .arg(request.files.size()));
    }
}

// Of the request's files and levels.
void takeComparisons(const Arguments& arguments, AnalyzeRequest& request)
{
    if (arguments.has("theory")) {
        request.theory = theoryChain(arguments.value("theory"), std::nullopt, request.unit());
    }
    if (arguments.has("subtract") && request.levels.isEmpty()) {
        failUsage(QStringLiteral("--subtract needs --level for each recording, here and in what is "
                                 "subtracted: levels in dBFS are never quite the same"));
    }
    if (arguments.has("subtract")) {
        request.without = readResult(arguments.value("subtract"));
    }
}

const SampleType* typeOf(const QString& name)
{
    const SampleType* const type = sampleTypeOf(name);
    if (type == nullptr) {
        failUsage("--type takes " + sampleTypeNames().join('|') + ", not \"" + name + '"');
    }
    return type;
}

} // namespace

AnalyzeRequest analyzeRequestOf(const Arguments& arguments)
{
    AnalyzeRequest request;
    checkResultOptions(arguments);
    request.files = arguments.positional().mid(1);
    for (const QString& level : arguments.values("level")) {
        request.levels << numberOf(level, "--level", {-300.0, 300.0, "dBm"});
    }
    for (const QString& threshold : arguments.values("threshold")) {
        request.thresholds << thresholdOf(threshold);
    }
    if (arguments.has("type")) {
        request.type = typeOf(arguments.value("type"));
    }
    if (arguments.has("rate")) {
        request.sampleRate = numberOf(arguments.value("rate"), "--rate", {1e-3, 1e12, "Hz"});
    }
    if (arguments.has("limit")) {
        request.limit = numberOf(arguments.value("limit"), "--limit", {-300.0, 300.0, "dB"});
    }
    if (arguments.has("center")) {
        request.center = numberOf(arguments.value("center"), "--center", {-1e12, 1e12, "Hz"});
    }
    request.skipSeconds = numberOr(arguments, "skip", {0.0, 1e9, "seconds"}, 0.0);
    checkFiles(request);
    takeComparisons(arguments, request);
    return request;
}
