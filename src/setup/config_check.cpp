#include "setup/config_check.h"

#include "setup/config_file.h"

#include <QHash>
#include <QPair>

#include <algorithm>

namespace {

using Place = QPair<QString, QString>; // section and key

const ConfigKey* findKey(const QVector<ConfigKey>& keys, const QString& name)
{
    const auto* const found = std::find_if(keys.begin(), keys.end(),
                                           [&](const ConfigKey& key) { return key.name == name; });
    return found != keys.end() ? found : nullptr;
}

// The line that counts for each section and for each key: the last one of its name.
class LastLines
{
public:
    explicit LastLines(const QVector<ConfigLine>& lines)
    {
        int sectionLine = 0;
        for (const ConfigLine& line : lines) {
            if (line.role == ConfigLine::Role::Section) {
                sectionLine = line.number;
                sections[line.section] = sectionLine;
            }
            if (!line.key.isEmpty()) {
                keys[{line.section, line.key}] = line.number;
            }
            sectionOf[line.number] = sectionLine;
        }
    }

    bool isReplaced(const ConfigLine& line) const
    {
        return sections.value(line.section) != sectionOf.value(line.number) ||
               (!line.key.isEmpty() && keys.value({line.section, line.key}) != line.number);
    }

private:
    QHash<QString, int> sections;
    QHash<Place, int> keys;
    QHash<int, int> sectionOf; // by line: that of its section
};

QString inBrackets(const QString& section)
{
    return QLatin1Char('[') + section + QLatin1Char(']');
}

QString complaintOfKey(const ConfigLine& line, const QVector<ConfigKey>& keys)
{
    const ConfigKey* key = findKey(keys, line.key);
    if (key == nullptr) {
        return QStringLiteral("ignored: %1 has no key \"%2\"")
            .arg(inBrackets(line.section), line.key);
    }
    if (!fitsConfigKind(line.value, key->kind)) {
        return QStringLiteral("the value of \"%1\" isn't a %2").arg(line.key, nameOf(key->kind));
    }
    return {};
}

bool isCutOff(const QString& text, const QVector<ConfigLine>& lines)
{
    return !lines.isEmpty() && !text.endsWith(QLatin1Char('\n')) &&
           !text.endsWith(QLatin1Char('\r'));
}

// Empty when there is none.
QString complaintOf(const ConfigLine& line, const LastLines& last)
{
    if (line.role == ConfigLine::Role::Other) {
        return QStringLiteral("ignored: no \"key = value\" line of a section, and no section with "
                              "such a line under it");
    }
    const QVector<ConfigKey> keys = configKeys(line.section);
    if (keys.isEmpty()) {
        return line.role == ConfigLine::Role::Section
                   ? QStringLiteral("ignored: unknown section ") + inBrackets(line.section)
                   : QString();
    }
    if (last.isReplaced(line)) {
        return QStringLiteral("ignored: the same stands again further down");
    }
    return line.key.isEmpty() ? QString() : complaintOfKey(line, keys);
}

} // namespace

QVector<ConfigComplaint> ignoredConfigLines(const QString& text)
{
    const QVector<ConfigLine> lines = configLines(text);
    const LastLines last(lines);
    QVector<ConfigComplaint> complaints;
    for (const ConfigLine& line : lines) {
        const QString complaint = complaintOf(line, last);
        if (!complaint.isEmpty()) {
            complaints.append({line.number, complaint});
        }
    }
    if (isCutOff(text, lines)) {
        complaints.last() = {lines.last().number, QStringLiteral("ignored: it has no line end")};
    }
    return complaints;
}
