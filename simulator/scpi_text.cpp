#include "simulator/scpi_text.h"

#include <algorithm>
#include <utility>

namespace {

bool isQuote(char c)
{
    return c == '"' || c == '\'';
}

QList<QByteArray> dividedAtSemicolons(const QByteArray& line)
{
    QList<QByteArray> parts;
    int start = 0;
    char quote = 0;
    for (int i = 0; i < line.size(); ++i) {
        const char c = line.at(i);
        if (quote != 0) {
            quote = c == quote ? char{0} : quote;
        } else if (isQuote(c)) {
            quote = c;
        } else if (c == ';') {
            parts << line.mid(start, i - start);
            start = i + 1;
        }
    }
    parts << line.mid(start);
    return parts;
}

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

ScpiUnit unitOf(const QByteArray& text)
{
    const auto end = std::find_if(text.begin(), text.end(), isSpace);
    const int length = static_cast<int>(end - text.begin());
    ScpiUnit unit{text.left(length), false, text.mid(length).trimmed()};
    if (unit.header.endsWith('?')) {
        unit.query = true;
        unit.header.chop(1);
    }
    return unit;
}

bool standsOutsidePaths(const QByteArray& header)
{
    return header.startsWith('*') || header.startsWith('&') || header.startsWith('@');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The digits at the end of a word, which are cut off it; "1" if there are none.
QByteArray takeNumber(QByteArray& word)
{
    int start = word.size();
    while (start > 0 && isDigit(word.at(start - 1))) {
        --start;
    }
    const QByteArray number = word.mid(start);
    word.truncate(start);
    return number.isEmpty() ? QByteArray("1") : number;
}

} // namespace

QVector<ScpiUnit> scpiUnits(const QByteArray& line)
{
    QVector<ScpiUnit> units;
    QByteArray path; // with its colon at the end
    for (const QByteArray& part : dividedAtSemicolons(line)) {
        ScpiUnit unit = unitOf(part.trimmed());
        if (unit.header.isEmpty() && !unit.query) {
            continue;
        }
        if (!standsOutsidePaths(unit.header)) {
            unit.header =
                unit.header.startsWith(':') ? unit.header.mid(1) : QByteArray(path + unit.header);
            path = unit.header.left(unit.header.lastIndexOf(':') + 1);
        }
        units << unit;
    }
    return units;
}

ScpiPattern::ScpiPattern(const char* text)
{
    QByteArray word;
    bool optional = false;
    const auto finishWord = [&] {
        if (!word.isEmpty()) {
            keywords.push_back(keyword(std::exchange(word, QByteArray()), optional));
        }
    };
    for (const char* c = text; *c != 0; ++c) {
        if (*c == ':' || *c == '[' || *c == ']') {
            finishWord();
            optional = *c == '[' || (optional && *c != ']');
        } else {
            word += *c;
        }
    }
    finishWord();
}

ScpiPattern::Keyword ScpiPattern::keyword(QByteArray text, bool optional)
{
    const QByteArray number = takeNumber(text);
    QByteArray shortForm = text;
    while (!shortForm.isEmpty() && shortForm.back() >= 'a' && shortForm.back() <= 'z') {
        shortForm.chop(1);
    }
    return {shortForm, text.toUpper(), number, optional};
}

bool ScpiPattern::fits(const Keyword& keyword, const QByteArray& word)
{
    QByteArray name = word.toUpper();
    const QByteArray number = takeNumber(name);
    return number == keyword.number && (name == keyword.shortForm || name == keyword.longForm);
}

bool ScpiPattern::matches(const QByteArray& header) const
{
    return matchesFrom(0, header.split(':'), 0);
}

bool ScpiPattern::matchesFrom(std::size_t index, const QList<QByteArray>& words, int word) const
{
    if (index == keywords.size()) {
        return word == words.size();
    }
    const Keyword& expected = keywords[index];
    const bool taken = word < words.size() && fits(expected, words.at(word)) &&
                       matchesFrom(index + 1, words, word + 1);
    return taken || (expected.optional && matchesFrom(index + 1, words, word));
}
