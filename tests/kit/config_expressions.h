// The grammar of a configuration as its two expressions tell it, matched as they stand.
#pragma once

#include "setup/config_text.h"

#include <QRegularExpression>

// Line ends of every kind, as the scanner takes them.
inline ConfigText byExpressions(const QString& text)
{
    const QRegularExpression sections(QStringLiteral(
        R"x((*ANYCRLF)\[(.+)\][\r\n]+((?:.+\ =\ (?:(?:-?\d+(?:\.\d+)?(?:[eE][\+|-]\d+)?)|".*")[\r\n]+)+))x"));
    const QRegularExpression keys(
        QStringLiteral(R"x((*ANYCRLF)(.+)\ =\ ((?:-?\d+(?:\.\d+)?(?:[eE][\+|-]\d+)?)|".+"))x"));
    ConfigText result;
    auto section = sections.globalMatch(text);
    while (section.hasNext()) {
        const QRegularExpressionMatch found = section.next();
        ConfigSection values;
        auto key = keys.globalMatch(found.captured(2));
        while (key.hasNext()) {
            const QRegularExpressionMatch pair = key.next();
            values.insert(pair.captured(1), pair.captured(2));
        }
        result.insert(found.captured(1), values);
    }
    return result;
}
