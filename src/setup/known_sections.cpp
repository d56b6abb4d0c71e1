#include "setup/known_sections.h"

#include <QRegularExpression>

std::optional<qint32> numberOfRow(const QString& section)
{
    static const QRegularExpression pattern(QStringLiteral("Notch\\ (\\d+)"));
    const QRegularExpressionMatch match = pattern.match(section);
    return match.hasMatch() ? std::optional<qint32>(match.captured(1).toInt()) : std::nullopt;
}

KnownSections::KnownSections(const QStringList& sections, const KeysOf& keysOfSection)
    : keysOfRow(keysOfSection(QStringLiteral("Notch 1")))
{
    for (const QString& section : sections) {
        keysOf.insert(section, keysOfSection(section));
    }
}

const QSet<QString>* KnownSections::operator()(QStringView section) const
{
    const QString name = section.toString();
    const auto known = keysOf.constFind(name);
    if (known != keysOf.constEnd()) {
        return &known.value();
    }
    // Most names are told apart without the expression.
    const bool isRow = section.contains(QLatin1String("Notch ")) && numberOfRow(name);
    return isRow ? &keysOfRow : nullptr;
}
