#include "cli/result_output.h"

#include "base/whole_file.h"
#include "campaign/result_csv.h"
#include "campaign/result_json.h"
#include "chart/chart_file.h"
#include "cli/output_files.h"
#include "cli/recording_table.h"
#include "cli/text_table.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

const QString none = QStringLiteral("-");
const QString standardOutput = QStringLiteral("-");

struct Form
{
    const char* option;
    QByteArray (*bytes)(const NprResult& result);
};

const Form forms[] = {
    {"csv", [](const NprResult& result) { return pointsToCsv(result); }},
    {"json", [](const NprResult& result) { return resultToJson(result); }},
};

// Decimals that a number with this standard deviation is worth.
int decimalsFor(std::optional<double> sigma)
{
    constexpr int usual = 2;
    if (!sigma || !(*sigma > 0.0)) {
        return usual;
    }
    return std::clamp(static_cast<int>(std::ceil(-std::log10(*sigma))), 0, usual);
}

QString rounded(std::optional<double> value, int decimals)
{
    return value && std::isfinite(*value) ? QString::number(*value, 'f', decimals) : none;
}

QString sigmaText(std::optional<double> sigma)
{
    return sigma ? QString::number(*sigma, 'f', 2) : none;
}

Colour colourOf(const NprPoint& point)
{
    if (point.passed) {
        return *point.passed ? Colour::Good : Colour::Bad;
    }
    return point.marks.isEmpty() ? Colour::Plain : Colour::Warning;
}

QString verdict(const NprPoint& point)
{
    return !point.passed   ? QString()
           : *point.passed ? QStringLiteral("pass")
                           : QStringLiteral("FAIL");
}

std::optional<double> ratioAt(const NprPoint& place, const QVector<NprPoint>& points)
{
    const auto* const found =
        std::find_if(points.begin(), points.end(), [&place](const NprPoint& point) {
            return point.level == place.level && point.notch == place.notch;
        });
    return found == points.end() ? std::nullopt : found->npr;
}

// A result without a point is no reason to lose a former one.
bool keepsFormer(const NprResult& result, const QString& file, Console& console)
{
    const QFileInfo former(file);
    const bool keeps = result.points.isEmpty() && former.isFile() && former.size() > 0;
    if (keeps) {
        console.message(file + " stays as it was, for nothing was measured");
    }
    return keeps;
}

using IsKept = std::function<bool(const QString& file)>;

// The files that couldn't be written.
QStringList writeForms(const NprResult& result, const Arguments& arguments, Console& console,
                       const IsKept& isKept)
{
    QStringList unwritten;
    for (const Form& form : forms) {
        for (const QString& file : arguments.values(form.option)) {
            const QByteArray bytes = form.bytes(result);
            if (file == standardOutput) {
                console.printBytes(bytes);
            } else if (!isKept(file) && !writeWholeFile(file, bytes)) {
                unwritten << file;
            }
        }
    }
    return unwritten;
}

void requireWritten(const QStringList& unwritten)
{
    if (!unwritten.isEmpty()) {
        failWriting(unwritten.join(", "));
    }
}

void printTables(const NprResult& result, const ResultContext& context, Console& console)
{
    if (!result.recordings.isEmpty()) {
        console.print(recordingTable(result.recordings, console) + '\n');
    }
    console.print(pointTable(result, context.theory, console));
    if (!result.curves.isEmpty()) {
        console.print('\n' + curveTable(result, console));
    }
}

void putOutAll(const NprResult& result, const ResultContext& context, const Arguments& arguments,
               Console& console)
{
    const IsKept isKept = [&](const QString& file) { return keepsFormer(result, file, console); };
    QStringList unwritten = writeForms(result, arguments, console, isKept);
    for (const QString& file : arguments.values("plot")) {
        if (!isKept(file) && !saveChart(chartOf(result, context), file)) {
            unwritten << file;
        }
    }
    if (!takesStandardOutput(arguments)) {
        printTables(result, context, console);
    }
    requireWritten(unwritten);
}

} // namespace

Options jsonOption()
{
    return {{"json", "FILE",
             "Write everything as JSON, which --subtract and \"plot\" read; - is standard output.",
             true}};
}

Options resultOptions()
{
    return Options{{"csv", "FILE",
                    "Write the points as comma-separated values with a header; - is standard "
                    "output. A spreadsheet with a decimal comma needs to be told that the point "
                    "is the decimal sign (import as English).",
                    true}} +
           jsonOption() + Options{{"plot", "FILE.png|FILE.svg", "Draw NPR over level.", true}};
}

bool takesStandardOutput(const Arguments& arguments)
{
    return std::any_of(std::begin(forms), std::end(forms), [&](const Form& form) {
        return arguments.values(form.option).contains(standardOutput);
    });
}

void checkResultOptions(const Arguments& arguments, const QStringList& furtherFiles)
{
    int toStandardOutput = 0;
    for (const Form& form : forms) {
        toStandardOutput += arguments.values(form.option).count(standardOutput);
    }
    for (const QString& file : arguments.values("plot")) {
        if (!isChartFile(file)) {
            failUsage("--plot takes a name that ends in .png or .svg, not \"" + file + '"');
        }
    }
    if (toStandardOutput > 1) {
        failUsage(QStringLiteral("standard output takes one result only: give - once"));
    }
    requireOutputs(arguments, furtherFiles);
}

void writeResult(const NprResult& result, const Arguments& arguments, Console& console)
{
    requireWritten(writeForms(result, arguments, console, [](const QString&) { return false; }));
}

void writeBytes(const QByteArray& bytes, const QString& file, Console& console)
{
    if (file == standardOutput) {
        console.printBytes(bytes);
    } else if (!writeWholeFile(file, bytes)) {
        failWriting(file);
    }
}

void writeChart(const NprChartData& chart, const QString& file)
{
    if (!saveChart(chart, file)) {
        failWriting(file);
    }
}

void putOut(ExitStatus status, const NprResult& result, const ResultContext& context,
            const Arguments& arguments, Console& console)
{
    try {
        putOutAll(result, context, arguments, console);
    } catch (const Failure& failure) {
        if (status == ExitStatus::Done || status == ExitStatus::LimitMissed) {
            throw;
        }
        console.message(failure.text);
    }
}

QString pointTable(const NprResult& result, const QVector<NprPoint>& theory, const Console& console)
{
    const QString unit = nameOf(result.levelUnit);
    QVector<Align> columns(8, Align::Right);
    QStringList headings{"level/" + unit, "notch",    "center/MHz", "power/" + unit,
                         "NPR/dB",        "sigma/dB", "theory/dB",  "EVM/%"};
    if (theory.isEmpty()) {
        columns.removeLast();
        headings.removeAll("theory/dB");
    }
    TextTable table(columns << Align::Left << Align::Left, headings << ""
                                                                    << "marks");
    for (const NprPoint& point : result.points) {
        const int decimals = decimalsFor(point.sigma);
        QStringList cells{rounded(point.level, 2),        QString::number(point.notch),
                          rounded(point.center / 1e6, 3), rounded(point.power, 2),
                          rounded(point.npr, decimals),   sigmaText(point.sigma)};
        if (!theory.isEmpty()) {
            cells << rounded(ratioAt(point, theory), 2);
        }
        cells << (point.npr ? QString::number(*point.evmPercent(), 'g', 3) : none) << verdict(point)
              << point.marks.join(' ');
        table.addRow(cells, colourOf(point));
    }
    return table.text(console);
}

QString curveTable(const NprResult& result, const Console& console)
{
    const QString unit = nameOf(result.levelUnit);
    QVector<Align> columns{Align::Right, Align::Right, Align::Right};
    QStringList headings{"notch", "peak/dB", "at/" + unit};
    for (const NprRange& range : result.curves.constFirst().ranges) {
        const QString threshold = QString::number(range.threshold);
        columns << Align::Right << Align::Right << Align::Right;
        headings << "over " + threshold + " dB: from/" + unit << "to/" + unit << "range/dB";
    }
    TextTable table(columns, headings);
    for (const NprCurve& curve : result.curves) {
        QStringList cells{QString::number(curve.notch), rounded(curve.peakNpr, 1),
                          rounded(curve.peakLevel, 2)};
        for (const NprRange& range : curve.ranges) {
            cells << rounded(range.from, 2) << rounded(range.to, 2) << rounded(range.range(), 2);
        }
        table.addRow(cells);
    }
    return table.text(console);
}
