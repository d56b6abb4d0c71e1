#include "setup/config_file.h"

#include "base/regular_file.h"
#include "base/truncation.h"
#include "base/whole_file.h"
#include "setup/insertion_order.h"
#include "setup/known_sections.h"

#include <QDebug>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <new>

namespace {

template <typename Record> struct Key
{
    const char* name;
    ConfigKind kind;
    QString (*write)(const Record& record);
    void (*read)(Record& record, const QString& value);
};

template <typename Record> struct ReadKey
{
    const char* name;
    ConfigKind kind;
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

const Key<MeasurementSetup> nprKeys[] = {
    {"SRate", ConfigKind::Real,
     [](const MeasurementSetup& s) { return QString::number(s.sampleRate); },
     [](MeasurementSetup& s, const QString& v) { s.sampleRate = v.toDouble(); }},
    {"NBW/SRate", ConfigKind::Real,
     [](const MeasurementSetup& s) { return QString::number(s.nbwSrate); },
     [](MeasurementSetup& s, const QString& v) { s.nbwSrate = v.toDouble(); }},
    {"FFT Len", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return QString::number(s.fftLength()); },
     [](MeasurementSetup& s, const QString& v) { s.fftLengthIndex = rowOfLength(v.toInt()); }},
    {"Notch Count", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return QString::number(s.notchCount); },
     [](MeasurementSetup& s, const QString& v) { s.notchCount = quint32(v.toInt()); }},
    {"Notch Width", ConfigKind::Real,
     [](const MeasurementSetup& s) { return QString::number(s.notchWidth); },
     [](MeasurementSetup& s, const QString& v) { s.notchWidth = v.toDouble(); }},
    {"Notch Offset", ConfigKind::Real,
     [](const MeasurementSetup& s) { return QString::number(s.notchOffset); },
     [](MeasurementSetup& s, const QString& v) { s.notchOffset = v.toDouble(); }},
    {"Notch Depth", ConfigKind::Real,
     [](const MeasurementSetup& s) { return QString::number(s.notchDepth); },
     [](MeasurementSetup& s, const QString& v) { s.notchDepth = v.toDouble(); }},
    {"Notch/Carrier", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return rowText(s.notchOrCarrier); },
     [](MeasurementSetup& s, const QString& v) { s.notchOrCarrier = NotchOrCarrier(v.toInt()); }},
    {"Phase Mode", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return rowText(s.phaseMode); },
     [](MeasurementSetup& s, const QString& v) { s.phaseMode = PhaseLaw(v.toInt()); }},
    {"Custom", ConfigKind::Whole, [](const MeasurementSetup& s) { return rowText(s.customSource); },
     [](MeasurementSetup& s, const QString& v) { s.customSource = SignalSource(v.toInt()); }},
    {"Seed", ConfigKind::Whole, [](const MeasurementSetup& s) { return QString::number(s.seed); },
     [](MeasurementSetup& s, const QString& v) { s.seed = quint32(v.toInt()); }},
};

const Key<MeasurementSetup> tcpKeys[] = {
    {"Port", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return QString::number(s.tcpPort); },
     [](MeasurementSetup& s, const QString& v) { s.tcpPort = quint16(v.toInt()); }},
};

const Key<MeasurementSetup> displayKeys[] = {
    {"Sinus(x)/x", ConfigKind::Whole,
     [](const MeasurementSetup& s) { return QString::number(int{s.sinxCompensation}); },
     [](MeasurementSetup& s, const QString& v) { s.sinxCompensation = v.toInt() != 0; }},
};

const Key<MeasurementSetup> userKeys[] = {
    {"PhaseMag File", ConfigKind::Text,
     [](const MeasurementSetup& s) { return quoted(s.phaseMagFile); },
     [](MeasurementSetup& s, const QString& v) { s.phaseMagFile = unquoted(v); }},
    {"I File", ConfigKind::Text, [](const MeasurementSetup& s) { return quoted(s.iFile); },
     [](MeasurementSetup& s, const QString& v) { s.iFile = unquoted(v); }},
    {"Q File", ConfigKind::Text, [](const MeasurementSetup& s) { return quoted(s.qFile); },
     [](MeasurementSetup& s, const QString& v) { s.qFile = unquoted(v); }},
};

const Key<Notch> notchKeys[] = {
    {"fcenter", ConfigKind::Real, [](const Notch& n) { return QString::number(n.center); },
     [](Notch& n, const QString& v) { n.center = v.toDouble(); }},
    {"fspan", ConfigKind::Real, [](const Notch& n) { return QString::number(n.width); },
     [](Notch& n, const QString& v) { n.width = v.toDouble(); }},
    {"fstart", ConfigKind::Real, [](const Notch& n) { return QString::number(n.startFreq); },
     [](Notch& n, const QString& v) { n.startFreq = v.toDouble(); }},
    {"fstop", ConfigKind::Real, [](const Notch& n) { return QString::number(n.stopFreq); },
     [](Notch& n, const QString& v) { n.stopFreq = v.toDouble(); }},
    {"Start", ConfigKind::Whole, [](const Notch& n) { return QString::number(n.startIndex); },
     [](Notch& n, const QString& v) { n.startIndex = v.toInt(); }},
    {"Stop", ConfigKind::Whole, [](const Notch& n) { return QString::number(n.stopIndex); },
     [](Notch& n, const QString& v) { n.stopIndex = v.toInt(); }},
    // Deliberate: written as a double but read as a whole number, so -40.5 comes back as 0.
    {"Notch Depth", ConfigKind::Whole, [](const Notch& n) { return QString::number(n.depth); },
     [](Notch& n, const QString& v) { n.depth = v.toInt(); }},
};

const ReadKey<Instrument> instrumentKeys[] = {
    {"Device", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.device = quint32(v.toInt()); }},
    {"Interface", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.interfaceKind = InterfaceKind(v.toInt()); }},
    {"GPIB Addr", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.gpibAddress = quint32(v.toInt()); }},
    {"IP Addr", ConfigKind::Text,
     [](Instrument& i, const QString& v) { i.ipAddress = unquoted(v); }},
    {"RS232 Port", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232Port = quint32(v.toInt()); }},
    {"RS232 BaudRate", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232BaudRate = quint32(v.toInt()); }},
    {"RS232 DataBits", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232DataBits = v.toInt(); }},
    {"RS232 Parity", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232Parity = v.toInt(); }},
    {"RS232 StopBits", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232StopBits = v.toInt(); }},
    {"RS232 FlowControl", ConfigKind::Whole,
     [](Instrument& i, const QString& v) { i.rs232FlowControl = v.toInt(); }},
    {"Frequency", ConfigKind::Real,
     [](Instrument& i, const QString& v) { i.frequency = v.toDouble(); }},
    {"Level", ConfigKind::Real, [](Instrument& i, const QString& v) { i.level = v.toDouble(); }},
};

const ReadKey<Analyzer> analyzerKeys[] = {
    {"Span", ConfigKind::Real, [](Analyzer& a, const QString& v) { a.span = v.toDouble(); }},
    {"Atten", ConfigKind::Whole,
     [](Analyzer& a, const QString& v) { a.attenuation = quint32(v.toInt()); }},
    {"AUTO Atten", ConfigKind::Whole,
     [](Analyzer& a, const QString& v) { a.autoAttenuation = v.toInt() != 0; }},
    {"Res BW", ConfigKind::Whole,
     [](Analyzer& a, const QString& v) { a.setResolutionBandwidth(quint32(v.toInt())); }},
    {"Video BW", ConfigKind::Whole,
     [](Analyzer& a, const QString& v) { a.setVideoBandwidth(quint32(v.toInt())); }},
    {"Sweeptime", ConfigKind::Real,
     [](Analyzer& a, const QString& v) { a.sweepTime = v.toDouble(); }},
    // Deliberate: switching to automatic clears the sweep time, whichever of the two comes later.
    {"AUTO Swt", ConfigKind::Whole,
     [](Analyzer& a, const QString& v) { a.setAutoSweepTime(v.toInt() != 0); }},
};

const ReadKey<MicrowaveGenerator> microwaveKeys[] = {
    {"Atten", ConfigKind::Whole,
     [](MicrowaveGenerator& m, const QString& v) { m.attenuation = quint32(v.toInt()); }},
    {"IF Input", ConfigKind::Whole,
     [](MicrowaveGenerator& m, const QString& v) { m.ifInput = v.toInt() != 0; }},
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

template <typename Table> void listKeys(const Table& table, QVector<ConfigKey>& list)
{
    for (const auto& key : table) {
        list.append({QLatin1String(key.name), key.kind});
    }
}

struct SettingsSection
{
    const char* name;
    void (*read)(const ConfigSection& section, MeasurementSetup& setup);
    void (*list)(QVector<ConfigKey>& keys);
};

using Keys = QVector<ConfigKey>;

const SettingsSection settingsSections[] = {
    {"NPR", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, nprKeys, s); },
     [](Keys& list) { listKeys(nprKeys, list); }},
    {"TCP/IP", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, tcpKeys, s); },
     [](Keys& list) { listKeys(tcpKeys, list); }},
    {"Display", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, displayKeys, s); },
     [](Keys& list) { listKeys(displayKeys, list); }},
    {"User", [](const ConfigSection& c, MeasurementSetup& s) { readSection(c, userKeys, s); },
     [](Keys& list) { listKeys(userKeys, list); }},
    {"Generator1",
     [](const ConfigSection& c, MeasurementSetup& s) {
         readSection(c, instrumentKeys, s.generator);
     },
     [](Keys& list) { listKeys(instrumentKeys, list); }},
    {"Analyzer",
     [](const ConfigSection& c, MeasurementSetup& s) {
         readSection(c, instrumentKeys, s.analyzer);
         readSection(c, analyzerKeys, s.analyzer);
     },
     [](Keys& list) {
         listKeys(instrumentKeys, list);
         listKeys(analyzerKeys, list);
     }},
    {"Generator2",
     [](const ConfigSection& c, MeasurementSetup& s) {
         readSection(c, instrumentKeys, s.microwave);
         readSection(c, microwaveKeys, s.microwave);
     },
     [](Keys& list) {
         listKeys(instrumentKeys, list);
         listKeys(microwaveKeys, list);
     }},
};

const SettingsSection* settingsSection(const QString& name)
{
    const auto* const known =
        std::find_if(std::begin(settingsSections), std::end(settingsSections),
                     [&](const SettingsSection& s) { return name == QLatin1String(s.name); });
    return known != std::end(settingsSections) ? known : nullptr;
}

// Deliberate: sections are applied in the order of the hash and a row goes to list position n,
// counted from 0, while the writer counts from 1. So the rows come in any order, and a value that
// a section does not name stays from the row read before.
void apply(const ConfigText& sections, MeasurementSetup& setup)
{
    Notch scratch;
    QVector<Notch> rows;
    QVector<qint32> positions;
    for (auto section = sections.begin(); section != sections.end(); ++section) {
        if (const SettingsSection* known = settingsSection(section.key())) {
            known->read(section.value(), setup);
            continue;
        }
        if (const std::optional<qint32> number = numberOfRow(section.key())) {
            readSection(section.value(), notchKeys, scratch);
            rows.append(scratch);
            positions.append(*number);
        }
    }
    for (const int row : orderAfterInsertions(positions)) {
        setup.notches->items.append(rows.at(row));
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
void writeConfig(const MeasurementSetup& setup, const QString& path)
{
    const QByteArray bytes = configTextOf(setup).toLocal8Bit();
    WholeFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        file.write(bytes);
        file.putInPlace();
    }
}

} // namespace

QString configTextOf(const MeasurementSetup& setup)
{
    QString text;
    QTextStream out(&text);
    writeAll(out, setup);
    return text;
}

MeasurementSetup configOf(const ConfigText& sections)
{
    MeasurementSetup setup;
    apply(sections, setup);
    return setup;
}

QStringList configSections()
{
    QStringList names;
    for (const SettingsSection& section : settingsSections) {
        names.append(QLatin1String(section.name));
    }
    return names;
}

QVector<ConfigKey> configKeys(const QString& section)
{
    QVector<ConfigKey> keys;
    if (const SettingsSection* known = settingsSection(section)) {
        known->list(keys);
    } else if (numberOfRow(section)) {
        listKeys(notchKeys, keys);
    }
    return keys;
}

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
    const KnownSections known(configSections(), [](const QString& section) {
        QSet<QString> names;
        for (const ConfigKey& key : configKeys(section)) {
            names.insert(key.name);
        }
        return names;
    });
    return configOf(parseConfigText(QTextStream(&file).readAll(), std::cref(known)));
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
