// The reader of magnitudes and phases as text. Lines of plain text are read without a conversion
// to QString, some shares of a piece of the file on several cores at once; what a share holds is
// stored in the order of the file, for the last of several lines of one index counts. Everything
// unusual goes the slow way: a field that isn't surely a number through Qt's conversions, a text
// that isn't plain ASCII through a QTextStream.
#include "base/line_fields.h"
#include "base/parallel.h"
#include "base/regular_file.h"
#include "files/plain_lines.h"
#include "files/signal_input.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

struct Bin
{
    int index;
    double phase;
    double magnitude;
};

using Bins = std::vector<Bin>;

void store(SignalData& data, const Bins& bins)
{
    double* phase = data.phase.data();
    double* magnitude = data.magnitude.data();
    for (const Bin& bin : bins) {
        if (bin.index >= 0 && bin.index < data.length) {
            phase[bin.index] = bin.phase;
            magnitude[bin.index] = bin.magnitude;
        }
    }
}

void readAnyLine(const QString& line, Bins& bins)
{
    const QVector<QStringRef> fields = fieldsOf(line, ' ');
    if (fields.size() >= 3) {
        bins.push_back({fields.at(0).toInt(), fields.at(1).toDouble(), fields.at(2).toDouble()});
    }
}

QString textOf(TextRange line)
{
    return QString::fromLatin1(line.begin, static_cast<int>(line.size()));
}

TextRange trimmed(TextRange text)
{
    const auto isBlank = [](char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); };
    while (text.begin != text.end && isBlank(*text.begin)) {
        ++text.begin;
    }
    while (text.begin != text.end && isBlank(text.end[-1])) {
        --text.end;
    }
    return text;
}

bool takeBlank(TextRange& text)
{
    const bool blank = text.startsWith(' ');
    text.begin += blank ? 1 : 0;
    return blank;
}

// The beginning of a trimmed line; what follows the third field doesn't matter.
bool takeSureBin(TextRange text, Bin& bin)
{
    return takeSureIndex(text, bin.index) && takeBlank(text) && takeSureDouble(text, bin.phase) &&
           takeBlank(text) && takeSureDouble(text, bin.magnitude) &&
           (text.size() == 0 || text.startsWith(' '));
}

// A line of plain text; what isn't of the common kind goes the way of any line.
void readPlainLine(TextRange line, Bins& bins)
{
    Bin bin{};
    if (takeSureBin(trimmed(line), bin)) {
        bins.push_back(bin);
    } else {
        readAnyLine(textOf(line), bins);
    }
}

// Whole lines each.
std::vector<TextRange> sharesOf(TextRange lines)
{
    constexpr qint64 shareSize = 1 << 17;
    std::vector<TextRange> shares;
    while (lines.size() > 0) {
        TextRange rest{lines.begin + std::min(shareSize, lines.size()), lines.end};
        takeLine(rest);
        shares.push_back({lines.begin, rest.begin});
        lines = rest;
    }
    return shares;
}

void readPlainLines(TextRange lines, SignalData& data)
{
    const std::vector<TextRange> shares = sharesOf(lines);
    std::vector<Bins> bins(shares.size());
    inParallel(shares.size(), usefulThreads(), [&](Pieces& left) {
        for (quint64 share = 0; left.take(share);) {
            for (TextRange rest = shares[share]; rest.size() > 0;) {
                readPlainLine(takeLine(rest), bins[share]);
            }
        }
    });
    for (const Bins& some : bins) {
        store(data, some);
    }
}

SignalData emptyOfLength(const QString& firstLine)
{
    const int length = firstLine.trimmed().toInt();
    if (length < 1 || static_cast<quint32>(length) > maxSignalLength) {
        return {};
    }
    return SignalData(static_cast<quint32>(length));
}

SignalData readAnyText(QFile& file)
{
    QTextStream in(&file);
    SignalData data = emptyOfLength(in.readLine());
    Bins bins;
    while (data.length > 0 && !in.atEnd()) {
        bins.clear();
        readAnyLine(in.readLine(), bins);
        store(data, bins);
    }
    return data;
}

} // namespace

SignalData loadMagnitudePhaseFile(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        return {};
    }
    PlainLines pieces(file);
    TextRange lines{};
    SignalData data;
    if (pieces.next(lines)) {
        data = emptyOfLength(textOf(takeLine(lines)));
        for (bool more = data.length > 0; more; more = pieces.next(lines)) {
            readPlainLines(lines, data);
        }
    }
    if (!pieces.isPlain()) {
        file.seek(0);
        return readAnyText(file);
    }
    return data;
}
