// What a CMakeLists.txt names for its targets to link.
#pragma once

#include <QRegularExpression>
#include <QSet>
#include <QString>
#include <QStringList>

struct NamedDependencies
{
    QSet<QString> inPublic;
    QSet<QString> inPrivate;

    QSet<QString> all() const { return inPublic + inPrivate; }
};

// Of all notchbench_library() and target_link_libraries() in the text. Conditions don't count.
inline NamedDependencies namedDependencies(QString text)
{
    NamedDependencies named;
    text.remove(QRegularExpression("#[^\n]*"));
    text.replace('(', " ( ").replace(')', " ) ");
    QSet<QString> others;
    QSet<QString>* where = &others;
    for (const QString& word : text.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts)) {
        if (word == "DEPENDS" || word == "PUBLIC" || word == "INTERFACE") {
            where = &named.inPublic;
        } else if (word == "PRIVATE_DEPENDS" || word == "PRIVATE") {
            where = &named.inPrivate;
        } else if (word == ")" || word == "FILES") {
            where = &others;
        } else {
            where->insert(word);
        }
    }
    return named;
}
