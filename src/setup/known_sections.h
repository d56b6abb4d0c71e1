// Which sections and keys of a configuration are read. A file may hold a million others, which
// the reader passes over without keeping them.
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

// The number of the notch table's row that a section of this name holds: 3 for "Notch 3".
// Deliberate: anything named "... Notch 3 ..." counts.
std::optional<qint32> numberOfRow(const QString& section);

// A filter for parseConfigText().
class KnownSections
{
public:
    using KeysOf = std::function<QSet<QString>(const QString& section)>;

    // The sections but for rows, and what tells the keys of each, and those of a row.
    KnownSections(const QStringList& sections, const KeysOf& keysOfSection);

    // The keys that are read of a section of that name; null for one that isn't known. They live
    // as long as this.
    const QSet<QString>* operator()(QStringView section) const;

private:
    QHash<QString, QSet<QString>> keysOf;
    QSet<QString> keysOfRow;
};
