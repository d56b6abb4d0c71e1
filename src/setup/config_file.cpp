#include "setup/config_file.h"

#include "base/regular_file.h"
#include "base/truncation.h"
#include "base/whole_file.h"
#include "setup/config_text.h"

#include <QDebug>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTextStream>

#include <cmath>
#include <new>

namespace {

template <typename Record> struct Key
{
    const char* name;
    QString (*write)(const Record& record);
    void (*read)(Record& record, const QString& value);
};

template <typename Record> struct ReadKey
{
    const char* name;
    void (*read)(Record& record, const QString& value);
};

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString unquoted(const QString& value)
{
    return value.mid(1, value.size() - 2);
}

// A row that has a name; one without is kept and written as it came.
template <typename Row> QString rowText(Row row)
{
    return QString::number(static_cast<qint32>(row));
}

// Deliberate: a length that is no power of two gives the row of the next length above it, and a
// length without a logarithm gives row 0.
qint32 rowOfLength(int length)
{
    const double row = 22.0 - std::log2(double(length));
    return std::isfinite(row) ? truncatedToInt32(row) : 0;
}

constexpr qint64 mostConfigBytes = 16 * 1048576; // a table of 999 rows takes a fifth of one MiB

const Key<MeasurementSetup> nprKeys[] = {
    {"SRate", [](const MeasurementSetup& s) { return QString::number(s.sampleRate); },
     [](MeasurementSetup& s, const QString& v) { s.sampleRate = v.toDouble(); }},
    {"NBW/SRate", [](const MeasurementSetup& s) { return QString::number(s.nbwSrate); },
     [](MeasurementSetup& s, const QString& v) { s.nbwSrate = v.toDouble(); }},
    {"FFT Len", [](const MeasurementSetup& s) { return QString::number(s.fftLength()); },
     [](MeasurementSetup& s, const QString& v) { s.fftLengthIndex = rowOfLength(v.toInt()); }},
    {"Notch Count", [](const MeasurementSetup& s) { return QString::number(s.notchCount); },
     [](MeasurementSetup& s, const QString& v) { s.notchCount = quint32(v.toInt()); }},
    {"Notch Width", [](const MeasurementSetup& s) { return QString::number(s.notchWidth); },
     [](MeasurementSetup& s, const QString& v) { s.notchWidth = v.toDouble(); }},
    {"Notch Offset", [](const MeasurementSetup& s) { return QString::number(s.notchOffset); },
     [](MeasurementSetup& s, const QString& v) { s.notchOffset = v.toDouble(); }},
    {"Notch Depth", [](const MeasurementSetup& s) { return QString::number(s.notchDepth); },
     [](MeasurementSetup& s, const QString& v) { s.notchDepth = v.toDouble(); }},
    {"Notch/Carrier", [](const MeasurementSetup& s) { return rowText(s.notchOrCarrier); },
     [](MeasurementSetup& s, const QString& v) { s.notchOrCarrier = NotchOrCarrier(v.toInt()); }},
    {"Phase Mode", [](const MeasurementSetup& s) { return rowText(s.phaseMode); },
     [](MeasurementSetup& s, const QString& v) { s.phaseMode = PhaseLaw(v.toInt()); }},
    {"Custom", [](const MeasurementSetup& s) { return rowText(s.customSource); },
     [](MeasurementSetup& s, const QString& v) { s.customSource = SignalSource(v.toInt()); }},
    {"Seed", [](const MeasurementSetup& s) { return QString::number(s.seed); },
     [](MeasurementSetup& s, const QString& v) { s.seed = quint32(v.toInt()); }},
};

const Key<MeasurementSetup> tcpKeys[] = {
    {"Port", [](const MeasurementSetup& s) { return QString::number(s.tcpPort); },
     [](MeasurementSetup& s, const QString& v) { s.tcpPort = quint16(v.toInt()); }},
};

const Key<MeasurementSetup> displayKeys[] = {
    {"Sinus(x)/x",
     [](const MeasurementSetup& s) { return QString::number(int{s.sinxCompensation}); },
     [](MeasurementSetup& s, const QString& v) { s.sinxCompensation = v.toInt() != 0; }},
};

const Key<MeasurementSetup> userKeys[] = {
    {"PhaseMag File", [](const MeasurementSetup& s) { return quoted(s.phaseMagFile); },
     [](MeasurementSetup& s, const QString& v) { s.phaseMagFile = unquoted(v); }},
    {"I File", [](const MeasurementSetup& s) { return quoted(s.iFile); },
     [](MeasurementSetup& s, const QString& v) { s.iFile = unquoted(v); }},
    {"Q File", [](const MeasurementSetup& s) { return quoted(s.qFile); },
     [](MeasurementSetup& s, const QString& v) { s.qFile = unquoted(v); }},
};

const Key<Notch> notchKeys[] = {
    {"fcenter", [](const Notch& n) { return QString::number(n.center); },
     [](Notch& n, const QString& v) { n.center = v.toDouble(); }},
    {"fspan", [](const Notch& n) { return QString::number(n.width); },
     [](Notch& n, const QString& v) { n.width = v.toDouble(); }},
    {"fstart", [](const Notch& n) { return QString::number(n.startFreq); },
     [](Notch& n, const QString& v) { n.startFreq = v.toDouble(); }},
    {"fstop", [](const Notch& n) { return QString::number(n.stopFreq); },
     [](Notch& n, const QString& v) { n.stopFreq = v.toDouble(); }},
    {"Start", [](const Notch& n) { return QString::number(n.startIndex); },
     [](Notch& n, const QString& v) { n.startIndex = v.toInt(); }},
    {"Stop", [](const Notch& n) { return QString::number(n.stopIndex); },
     [](Notch& n, const QString& v) { n.stopIndex = v.toInt(); }},
    // Deliberate: written as a double but read as a whole number, so -40.5 comes back as 0.
    {"Notch Depth", [](const Notch& n) { return QString::number(n.depth); },
     [](Notch& n, const QString& v) { n.depth = v.toInt(); }},
};

const ReadKey<Instrument> instrumentKeys[] = {
    {"Device", [](Instrument& i, const QString& v) { i.device = quint32(v.toInt()); }},
    {"Interface",
     [](Instrument& i, const QString& v) { i.interfaceKind = InterfaceKind(v.toInt()); }},
    {"GPIB Addr", [](Instrument& i, const QString& v) { i.gpibAddress = quint32(v.toInt()); }},
    {"IP Addr", [](Instrument& i, const QString& v) { i.ipAddress = unquoted(v); }},
    {"RS232 Port", [](Instrument& i, const QString& v) { i.rs232Port = quint32(v.toInt()); }},
    {"RS232 BaudRate",
     [](Instrument& i, const QString& v) { i.rs232BaudRate = quint32(v.toInt()); }},
    {"RS232 DataBits", [](Instrument& i, const QString& v) { i.rs232DataBits = v.toInt(); }},
    {"RS232 Parity", [](Instrument& i, const QString& v) { i.rs232Parity = v.toInt(); }},
    {"RS232 StopBits", [](Instrument& i, const QString& v) { i.rs232StopBits = v.toInt(); }},
    {"RS232 FlowControl", [](Instrument& i, const QString& v) { i.rs232FlowControl = v.toInt(); }},
    {"Frequency", [](Instrument& i, const QString& v) { i.frequency = v.toDouble(); }},
    {"Level", [](Instrument& i, const QString& v) { i.level = v.toDouble(); }},
};

const ReadKey<Analyzer> analyzerKeys[] = {
    {"Span", [](Analyzer& a, const QString& v) { a.span = v.toDouble(); }},
    {"Atten", [](Analyzer& a, const QString& v) { a.attenuation = quint32(v.toInt()); }},
    {"AUTO Atten", [](Analyzer& a, const QString& v) { a.autoAttenuation = v.toInt() != 0; }},
    {"Res BW", [](Analyzer& a, const QString& v) { a.setResolutionBandwidth(quint32(v.toInt())); }},
    {"Video BW", [](Analyzer& a, const QString& v) { a.setVideoBandwidth(quint32(v.toInt())); }},
    {"Sweeptime", [](Analyzer& a, const QString& v) { a.sweepTime = v.toDouble(); }},
    // Deliberate: switching to automatic clears the sweep time, whichever of the two comes later.
    {"AUTO Swt", [](Analyzer& a, const QString& v) { a.setAutoSweepTime(v.toInt() != 0); }},
};

const ReadKey<MicrowaveGenerator> microwaveKeys[] = {
    {"Atten", [](MicrowaveGenerator& m, const QString& v) { m.attenuation = quint32(v.toInt()); }},
    {"IF Input", [](MicrowaveGenerator& m, const QString& v) { m.ifInput = v.toInt() != 0; }},
};

template <typename Record, typename Table>
void readSection(const ConfigSection& section, const Table& table, Record& record)
{
    for (const auto& key : table) {
        const auto value = section.constFind(QLatin1String(key.name));
        if (value != section.constEnd()) {
            key.read(record, value.value());
        }
    }
}

template <typename Record, typename Table>
void writeSection(QTextStream& out, const QString& name, const Table& table, const Record& record)
{
    out << '[' << name << "]\n";
    for (const auto& key : table) {
        out << QLatin1String(key.name) << " = " << key.write(record) << '\n';
    }
    out << '\n';
}

struct SettingsSection
{
    const char* name;
    void (*read)(const ConfigSection& section, MeasurementSetup& setup);
};

const SettingsSection settingsSections[] = {
    {"NPR", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, nprKeys, s); }},
    {"TCP/IP", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, tcpKeys, s); }},
    {"Display",
     [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, displayKeys, s); }},
    {"User", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, userKeys, s); }},
    {"Generator1", [](const ConfigSection& c,
                      MeasurementSetup& s) { readSection(c, instrumentKeys, s.generator); }},
    {"Analyzer",
     [](const ConfigSection& c, MeasurementSetup& s) {
         readSection(c, instrumentKeys, s.analyzer);
         readSection(c, analyzerKeys, s.analyzer);
     }},
    {"Generator2",
     [](const ConfigSection& c, MeasurementSetup& s) {
         readSection(c, instrumentKeys, s.microwave);
         readSection(c, microwaveKeys, s.microwave);
     }},
};

bool applySettings(const QString& name, const ConfigSection& section, MeasurementSetup& setup)
{
    for (const SettingsSection& known : settingsSections) {
        if (name == QLatin1String(known.name)) {
            known.read(section, setup);
            return true;
        }
    }
    return false;
}

// Deliberate: sections are applied in the order of the hash and a row goes to list position n,
// counted from 0, while the writer counts from 1. So the rows come in any order, and a value that
// a section does not name stays from the row read before. Anything named "... Notch 3" counts.
void apply(const ConfigText& sections, MeasurementSetup& setup)
{
    const QRegularExpression notchName(QStringLiteral("Notch\\ (\\d+)"));
    Notch scratch;
    for (auto section = sections.begin(); section != sections.end(); ++section) {
        if (applySettings(section.key(), section.value(), setup)) {
            continue;
        }
        const QRegularExpressionMatch match = notchName.match(section.key());
        if (match.hasMatch()) {
            readSection(section.value(), notchKeys, scratch);
            setup.notches->insert(match.captured(1).toInt(), scratch);
        }
    }
}

void writeAll(QTextStream& out, const MeasurementSetup& setup)
{
    writeSection(out, QStringLiteral("NPR"), nprKeys, setup);
    writeSection(out, QStringLiteral("TCP/IP"), tcpKeys, setup);
    writeSection(out, QStringLiteral("Display"), displayKeys, setup);
    for (int row = 0; row < setup.notches->items.size(); ++row) {
        writeSection(out, QStringLiteral("Notch %1").arg(row + 1), notchKeys,
                     setup.notches->items.at(row));
    }
    writeSection(out, QStringLiteral("User"), userKeys, setup);
    out << setup.generator.configSection() << setup.analyzer.configSection()
        << setup.microwave.configSection();
}

QString defaultPath(const QString& name)
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QLatin1Char('/') + name;
}

// In the encoding of the system. Made whole first: a stream over the file writes once more when it
// goes, and ends the program if there is no memory for that.
QByteArray configBytes(const MeasurementSetup& setup)
{
    QString text;
    QTextStream out(&text);
    writeAll(out, setup);
    return text.toLocal8Bit();
}

void writeConfig(const MeasurementSetup& setup, const QString& path)
{
    const QByteArray bytes = configBytes(setup);
    WholeFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        file.write(bytes);
        file.putInPlace();
    }
}

} // namespace

MeasurementSetup loadConfig(const QString& path)
{
    MeasurementSetup setup;
    QFile file(path);
    if (!openRegular(file)) {
        return setup;
    }
    qDebug() << "File Exists";
    if (file.size() > mostConfigBytes) {
        return setup;
    }
    apply(parseConfigText(QTextStream(&file).readAll()), setup);
    return setup;
}

void saveConfig(const MeasurementSetup& setup, const QString& path)
{
    try {
        writeConfig(setup, path);
    } catch (const std::bad_alloc&) {
        // A failure like any other: the former file stays whole, and nothing is said.
    }
}

MeasurementSetup loadDefaultConfig(const QString& name)
{
    return loadConfig(defaultPath(name));
}

void saveDefaultConfig(const MeasurementSetup& setup, const QString& name)
{
    const QString path = defaultPath(name);
    QDir().mkpath(QFileInfo(path).path());
    saveConfig(setup, path);
}
