#include "cli/setup_arguments.h"

#include "base/regular_file.h"
#include "cli/exit_status.h"
#include "cli/nearest_name.h"
#include "cli/stop_check.h"
#include "cli/values.h"
#include "setup/config_check.h"
#include "setup/config_file.h"
#include "setup/notch_editing.h"

#include <QTextStream>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <tuple>

#include <poll.h>
#include <unistd.h>

namespace {

QString textOf(const QByteArray& bytes, const QString& name)
{
    if (bytes.size() > mostConfigBytes) {
        failFile(QStringLiteral("%1 is no configuration: it has more than 16 MiB").arg(name));
    }
    return QTextStream(bytes).readAll();
}

// Up to its end. Somebody who forgot that it is awaited ends the wait by Ctrl+C.
QByteArray readStandardInput()
{
    constexpr int patience = 200; // ms, for a signal that came just before the wait
    QByteArray all;
    char piece[65536];
    while (all.size() <= mostConfigBytes) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, patience);
        endAtSignal();
        if (ready <= 0) {
            continue;
        }
        const ssize_t count = read(STDIN_FILENO, piece, sizeof(piece));
        if (count == 0) {
            return all;
        }
        if (count < 0 && errno != EINTR && errno != EAGAIN) {
            failFile("can't read the configuration from standard input: " + qt_error_string());
        }
        all.append(piece, static_cast<int>(std::max(count, ssize_t{0})));
    }
    return all;
}

QString textOfConfig(const QString& path)
{
    QFile file(path);
    if (path == "-") {
        return textOf(readStandardInput(), QStringLiteral("standard input"));
    }
    if (!openRegular(file)) {
        const QString reason = !file.exists()              ? "there is no such file"
                               : !QFileInfo(path).isFile() ? "it is no file; - reads standard input"
                                                           : file.errorString();
        failFile(QStringLiteral("can't read configuration %1: %2").arg(path, reason));
    }
    return textOf(file.read(mostConfigBytes + 1), path);
}

void tellIgnoredLines(const QString& name, const QString& text, Console& console)
{
    constexpr int mostLines = 20;
    const QVector<ConfigComplaint> complaints = ignoredConfigLines(text);
    for (const ConfigComplaint& one : complaints.mid(0, mostLines)) {
        console.warn(QStringLiteral("%1:%2: %3").arg(name).arg(one.line).arg(one.text));
    }
    if (complaints.size() > mostLines) {
        console.warn(QStringLiteral("%1: %2 more lines like these")
                         .arg(name)
                         .arg(complaints.size() - mostLines));
    }
}

// All that can be set, as SECTION/KEY.
QStringList settableNames(const QStringList& sections)
{
    QStringList names;
    for (const QString& section : sections) {
        for (const ConfigKey& key : configKeys(section)) {
            names.append(section + '/' + key.name);
        }
    }
    return names;
}

// The section that a SECTION/KEY begins with, or nothing.
QString sectionOf(const QString& name, const QStringList& sections)
{
    for (const QString& section : sections) {
        if (name.startsWith(section + '/')) {
            return section;
        }
    }
    return {};
}

// Some keys alone would make a row that gets the others from a row read before.
void requireRow(const QString& unknownSection)
{
    if (!configKeys(unknownSection).isEmpty()) {
        failUsage("--set: CONFIG has no [" + unknownSection + "]; --notches makes rows");
    }
}

QString quoted(const QString& text)
{
    const bool isQuoted = fitsConfigKind(text, ConfigKind::Text);
    return isQuoted ? text : '"' + text + '"';
}

void set(ConfigText& config, const QString& word)
{
    const int equals = word.indexOf('=');
    if (equals < 0) {
        failUsage("--set takes SECTION/KEY=VALUE, such as NPR/Seed=7, not \"" + word + '"');
    }
    QStringList sections = configSections();
    for (auto section = config.begin(); section != config.end(); ++section) {
        if (!sections.contains(section.key()) && !configKeys(section.key()).isEmpty()) {
            sections.append(section.key()); // a row of the notch table
        }
    }
    const QString name = word.left(equals);
    const QString section = sectionOf(name, sections);
    requireRow(section.isEmpty() ? name.section('/', 0, 0) : QString());
    const QString keyName = name.mid(section.size() + 1);
    const QVector<ConfigKey> keys = configKeys(section);
    const auto* const key = std::find_if(keys.begin(), keys.end(),
                                         [&](const ConfigKey& k) { return k.name == keyName; });
    if (key == keys.end()) {
        failUsage("--set: unknown key " + name + didYouMean(name, settableNames(sections)));
    }
    const QString text = word.mid(equals + 1);
    const QString value = key->kind == ConfigKind::Text ? quoted(text) : text;
    if (!fitsConfigKind(value, key->kind)) {
        failUsage("--set: " + name + " takes a " + nameOf(key->kind) + ", not \"" + text + '"');
    }
    config[section].insert(keyName, value);
}

void makeNotches(const QString& text, MeasurementSetup& setup, Console& console)
{
    const QStringList fields = text.split(',');
    if (fields.size() < 3 || fields.size() > 4) {
        failUsage(
            "--notches takes COUNT,WIDTH_HZ,DEPTH_DB[,OFFSET_HZ], such as 9,1e6,-100, not \"" +
            text + '"');
    }
    const int count = wholeNumberOf(fields.at(0), "--notches COUNT", 1, int(maxNotchCount));
    setup.notchCount = quint32(count);
    setup.notchWidth = numberOf(fields.at(1), "--notches WIDTH_HZ", {1e-6, 1e12, "Hz"});
    setup.notchDepth = numberOf(fields.at(2), "--notches DEPTH_DB", {-100.0, 0.0, "dB"});
    if (fields.size() == 4) {
        setup.notchOffset = numberOf(fields.at(3), "--notches OFFSET_HZ", {-1e12, 1e12, "Hz"});
    }
    autoCalculateNotches(setup);
    const int made = setup.notches->items.size();
    if (made < count) {
        console.warn(
            QStringLiteral("--notches: only %1 of %2 rows were made; no more of this width "
                           "fit the noise band at an offset of %3 Hz")
                .arg(made)
                .arg(count)
                .arg(setup.notchOffset));
    }
}

// What is beyond all bounds reads as infinite.
void requireFinite(const ConfigText& config)
{
    for (auto section = config.begin(); section != config.end(); ++section) {
        for (const ConfigKey& key : configKeys(section.key())) {
            const QString value = section->value(key.name);
            if (key.kind == ConfigKind::Real && !std::isfinite(value.toDouble())) {
                failUsage("CONFIG: " + section.key() + '/' + key.name + " takes a number, not " +
                          value);
            }
        }
    }
}

// The order of rows in a file says nothing, and the reader's differs from run to run.
void sortByCenter(QList<Notch>& rows)
{
    const auto order = [](const Notch& n) {
        return std::make_tuple(n.center, n.width, n.depth, n.startIndex, n.stopIndex);
    };
    std::sort(rows.begin(), rows.end(),
              [&](const Notch& a, const Notch& b) { return order(a) < order(b); });
}

} // namespace

Options setupOptions()
{
    return {{"set", "SECTION/KEY=VALUE",
             "Override a line of CONFIG, for example --set \"NPR/FFT Len=4096\". Text needs no "
             "quotes.",
             true},
            {"notches", "COUNT,WIDTH_HZ,DEPTH_DB[,OFFSET_HZ]",
             "Lay the notches out as \"Auto-Calculate\" of the window does, in place of CONFIG's; "
             "the offset is CONFIG's when left out."}};
}

MeasurementSetup readSetup(const Arguments& arguments, Console& console, Further further)
{
    const QStringList& names = arguments.positional();
    if (names.isEmpty() || (names.size() > 1 && further == Further::Refused)) {
        failUsage(names.isEmpty() ? "CONFIG is missing: a .cfg file, - or default"
                                  : "unexpected argument " + names.at(1));
    }
    const QString& name = names.constFirst();
    ConfigText config;
    if (name != "default") {
        const QString text = textOfConfig(name);
        tellIgnoredLines(name == "-" ? "standard input" : name, text, console);
        config = parseConfigText(text);
    }
    for (const QString& word : arguments.values("set")) {
        set(config, word);
    }
    requireFinite(config);
    MeasurementSetup setup = configOf(config);
    if (arguments.has("notches")) {
        makeNotches(arguments.value("notches"), setup, console);
    }
    sortByCenter(setup.notches->items);
    return setup;
}

const QList<Notch>& requireNotches(const MeasurementSetup& setup)
{
    if (setup.notches->items.isEmpty()) {
        failUsage("CONFIG has no notch; add some with --notches COUNT,WIDTH_HZ,DEPTH_DB, such as "
                  "--notches 9,1e6,-100,0");
    }
    return setup.notches->items;
}
