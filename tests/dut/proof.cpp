// Writes the table of docs/physics.md: every device against theory, averaged over seeds. Takes the
// file, whose part between the marks is written anew, and how many stimuli a row may take at most.
#include "dut/experiment.h"

#include "base/parallel.h"
#include "kit/converter_theory.h"
#include "kit/device_chains.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace {

constexpr double sigmaWanted = 0.03;  // dB
constexpr double settledSigma = 0.05; // dB
constexpr double allowed = 0.1;       // dB, and three sigmas where the one wanted isn't reached

struct Row
{
    QString device;
    Stimulus stimulus;
    Chain chain;
    double level; // dBm
    double theory;
    double rareScatter; // dB, of one stimulus
    Averaged measured;

    double difference() const { return measured.reading - theory; }

    bool holds() const
    {
        const double scatter = measured.sigma > settledSigma ? 3.0 * measured.sigma : 0.0;
        return std::abs(difference()) <= allowed + scatter;
    }
};

using Rows = QVector<Row>;

// Centre and edge, all of the rate and half of it, narrow and wide: each once, against the others'
// first.
const Stimulus stimuli[] = {{1.0, 0.01, 131072, false},
                            {1.0, 0.10, 131072, true},
                            {0.5, 0.10, 131072, false},
                            {0.5, 0.01, 131072, true}};

void addMemoryless(Rows& rows, const QString& device, const Chain& chain, double backOff,
                   const Gain& gain)
{
    const QVector<double> orders = distortionOrders(gain);
    for (const Stimulus& stimulus : stimuli) {
        rows << Row{QStringLiteral("%1, %2 dB").arg(device).arg(backOff),
                    stimulus,
                    chain,
                    -backOff,
                    theoryOf(stimulus, orders),
                    0.0,
                    {}};
    }
}

void addMemorylessDevices(Rows& rows)
{
    for (const double smoothness : {1.0, 2.0}) {
        Chain chain = chainOf("rapp");
        chain.device.smoothness = smoothness;
        for (const double backOff : {0.0, 3.0, 6.0, 10.0}) {
            addMemoryless(rows, QStringLiteral("Rapp %1").arg(smoothness), chain, backOff,
                          rappGain(backOff, smoothness));
        }
    }
    for (const double backOff : {0.0, 2.0, 4.0, 6.0, 8.0}) {
        addMemoryless(rows, QStringLiteral("soft limiter"), chainOf("soft"), backOff,
                      softLimiterGain(backOff));
    }
    for (const double backOff : {3.0, 10.0, 20.0}) {
        addMemoryless(rows, QStringLiteral("Saleh"), chainOf("saleh"), backOff, salehGain(backOff));
    }
    for (const double backOff : {10.0, 20.0, 30.0}) {
        addMemoryless(rows, QStringLiteral("cubic"), chainOf("cubic", {0.0, 0.0}), backOff,
                      cubicGain(backOff));
    }
}

void addConverter(Rows& rows, int bits, double loading)
{
    for (const Stimulus& stimulus : stimuli) {
        rows << Row{QStringLiteral("%1 bits, k = %2").arg(bits).arg(loading, 0, 'f', 2),
                    stimulus,
                    chainOf(converterOf(bits, loading)),
                    0.0,
                    theoryOf(stimulus, bits, loading),
                    scatterOfClipping(bits, loading, stimulus.count),
                    {}};
    }
}

// The best loading, one on the flank of clipping and one on that of rounding.
void addConverters(Rows& rows)
{
    for (const int bits : {6, 8, 10, 12, 14, 16}) {
        addConverter(rows, bits, bits == 6 ? 2.5 : bits == 8 ? 3.0 : 3.5);
        addConverter(rows, bits, bestLoading(bits));
        addConverter(rows, bits, 8.0);
    }
}

void measureAll(Rows& rows, int mostSeeds)
{
    Row* const first = rows.data();
    inParallel(static_cast<quint64>(rows.size()), usefulThreads(), [=](Pieces& pieces) {
        for (quint64 k = 0; pieces.take(k);) {
            Row& row = first[k];
            row.measured = measureOverSeeds(row.chain, row.level, row.stimulus,
                                            {sigmaWanted, mostSeeds, row.rareScatter});
        }
    });
}

QString twoDecimals(double value)
{
    return QString::number(value, 'f', 2);
}

QString lineOf(const Row& row)
{
    const QString stimulus = QStringLiteral("%1 | %2 | %3 %")
                                 .arg(row.stimulus.atEdge ? "edge" : "centre")
                                 .arg(row.stimulus.beta)
                                 .arg(100.0 * row.stimulus.notchShare);
    return QStringLiteral("| %1 | %2 | %3 | %4 | %5%6 | %7 | %8 |\n")
        .arg(row.device, stimulus, twoDecimals(row.measured.reading), twoDecimals(row.theory),
             row.difference() < 0.0 ? "" : "+", twoDecimals(row.difference()),
             twoDecimals(row.measured.sigma), QString::number(row.measured.seeds));
}

QString tableOf(const Rows& rows)
{
    QString table =
        "| device | notch | beta | width | measured dB | theory dB | difference | sigma "
        "| stimuli |\n|---|---|---|---|---|---|---|---|---|\n";
    for (const Row& row : rows) {
        table += lineOf(row);
    }
    return table;
}

// Puts the table between the marks; false when the file or its marks can't be had.
bool putInto(const QString& path, const QString& table)
{
    const QByteArray start = "<!-- table -->\n";
    const QByteArray end = "<!-- end of table -->\n";
    QFile page(path);
    if (!page.open(QIODevice::ReadOnly)) {
        return false;
    }
    QByteArray text = page.readAll();
    page.close();
    const int from = text.indexOf(start) + start.size();
    const int to = text.indexOf(end);
    if (from < start.size() || to < from) {
        return false;
    }
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) &&
           file.write(text.replace(from, to - from, table.toUtf8())) > 0 && file.commit();
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int mostSeeds = arguments.value(2, QStringLiteral("2000")).toInt();
    Rows rows;
    addMemorylessDevices(rows);
    addConverters(rows);
    measureAll(rows, mostSeeds);
    QTextStream out(stdout);
    int failures = 0;
    for (const Row& row : rows) {
        if (!row.holds()) {
            out << "does not hold: " << lineOf(row);
            ++failures;
        }
    }
    out << rows.size() << " rows, " << failures << " of them outside what is allowed\n";
    if (!putInto(arguments.value(1), tableOf(rows))) {
        out << "cannot write the table into " << arguments.value(1) << "\n";
        return 1;
    }
    return failures == 0 ? 0 : 1;
}
