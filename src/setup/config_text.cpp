#include "setup/config_text.h"

namespace {

const QLatin1String separator(" = ");
constexpr int separatorLength = 3;

struct Line
{
    QStringView text;
    int number;      // from 1
    bool terminated; // by CR or LF; the last line of a file may not be
};

bool isLineEnd(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

// CR and LF together end one line.
bool endsLine(QStringView text, qsizetype at)
{
    return text[at] == QLatin1Char('\n') || at + 1 == text.size() ||
           text[at + 1] != QLatin1Char('\n');
}

bool isDigit(QStringView text, qsizetype at)
{
    return at < text.size() && text[at] >= QLatin1Char('0') && text[at] <= QLatin1Char('9');
}

// Lines that hold at least one character, one after the other; runs of line ends separate them.
class LineReader
{
public:
    explicit LineReader(const QString& text) : all(text) { next(); }

    // The present line; its text is null behind the last one.
    const Line& line() const { return present; }

    void next()
    {
        skipLineEnds();
        const qsizetype start = at;
        while (at < all.size() && !isLineEnd(all[at])) {
            ++at;
        }
        present = {at > start ? all.mid(start, at - start) : QStringView(), number,
                   at < all.size()};
    }

private:
    void skipLineEnds()
    {
        for (; at < all.size() && isLineEnd(all[at]); ++at) {
            number += endsLine(all, at) ? 1 : 0;
        }
    }

    const QStringView all;
    qsizetype at = 0;
    int number = 1;
    Line present = {};
};

qsizetype skipDigits(QStringView text, qsizetype at)
{
    while (isDigit(text, at)) {
        ++at;
    }
    return at;
}

// Length of the number that the text begins with: optional minus, digits, optional fraction,
// optional exponent whose sign may also be a bar. 0 if there is none.
qsizetype numberLength(QStringView text)
{
    const qsizetype digits = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    if (!isDigit(text, digits)) {
        return 0;
    }
    qsizetype end = skipDigits(text, digits);
    if (end < text.size() && text[end] == QLatin1Char('.') && isDigit(text, end + 1)) {
        end = skipDigits(text, end + 1);
    }
    const bool exponent = end + 1 < text.size() && QStringView(u"eE").contains(text[end]) &&
                          QStringView(u"+|-").contains(text[end + 1]);
    if (exponent && isDigit(text, end + 2)) {
        end = skipDigits(text, end + 2);
    }
    return end;
}

// Whether some separator, with a key before it, is followed by a value that ends the line.
bool isKeyLine(const Line& line)
{
    if (line.text.isNull() || !line.terminated) {
        return false;
    }
    const QStringView text = line.text;
    if (text.endsWith(QLatin1Char('"'))) {
        const qsizetype quoted = text.indexOf(QLatin1String(" = \""), 1);
        return quoted >= 0 && quoted + separatorLength < text.size() - 1;
    }
    // A number holds no blank, so only the last separator can stand before it.
    const qsizetype last = text.lastIndexOf(separator);
    if (last < 1) {
        return false;
    }
    const QStringView value = text.mid(last + separatorLength);
    return !value.isEmpty() && numberLength(value) == value.size();
}

// The name in brackets that the line ends with; null if there is none.
QStringView sectionName(const Line& line)
{
    const qsizetype open = line.text.indexOf(QLatin1Char('['));
    const bool closed = line.terminated && line.text.endsWith(QLatin1Char(']'));
    if (!closed || open < 0 || line.text.size() - open < 3) {
        return {};
    }
    return line.text.mid(open + 1, line.text.size() - open - 2);
}

// The value at the front of the text, a number or a quoted text that goes on to the line's end;
// null if there is none.
QStringView valueAt(QStringView text)
{
    const qsizetype length = numberLength(text);
    if (length > 0) {
        return text.left(length);
    }
    const bool quoted = text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"'));
    return quoted && text.size() >= 3 ? text : QStringView();
}

struct KeyAndValue
{
    QStringView key; // null for a line that carries no value
    QStringView value;
};

// Deliberate: the last separator that a value follows divides the line, even inside quotes, so a
// path with " = 5" in it is cut there. Every reader of these files does the same.
KeyAndValue dividedLine(QStringView text)
{
    qsizetype at = text.lastIndexOf(separator);
    while (at >= 1) {
        const QStringView value = valueAt(text.mid(at + separatorLength));
        if (!value.isNull()) {
            return {text.left(at), value};
        }
        at = text.lastIndexOf(separator, at - 1);
    }
    return {};
}

// Gives each line to the one of three that it is for.
template <typename OnSection, typename OnKey, typename OnOther>
void readLines(const QString& text, OnSection onSection, OnKey onKey, OnOther onOther)
{
    LineReader reader(text);
    while (!reader.line().text.isNull()) {
        const Line head = reader.line();
        const QStringView name = sectionName(head);
        reader.next();
        if (name.isNull() || !isKeyLine(reader.line())) {
            onOther(head.number);
            continue;
        }
        onSection(head.number, name);
        for (; isKeyLine(reader.line()); reader.next()) {
            onKey(reader.line().number, dividedLine(reader.line().text));
        }
    }
}

} // namespace

QVector<ConfigLine> configLines(const QString& text)
{
    using Role = ConfigLine::Role;
    QVector<ConfigLine> lines;
    QString section;
    readLines(
        text,
        [&](int number, QStringView name) {
            section = name.toString();
            lines.append({number, Role::Section, section, {}, {}});
        },
        [&](int number, const KeyAndValue& line) {
            lines.append({number, Role::Key, section, line.key.toString(), line.value.toString()});
        },
        [&](int number) {
            lines.append({number, Role::Other, {}, {}, {}});
        });
    return lines;
}

ConfigText parseConfigText(const QString& text, const ConfigFilter& filter)
{
    ConfigText sections;
    ConfigSection* section = nullptr;
    const QSet<QString>* keys = nullptr;
    readLines(
        text,
        [&](int /*number*/, QStringView name) {
            keys = filter ? filter(name) : nullptr;
            section = filter && keys == nullptr ? nullptr : &sections[name.toString()];
            if (section != nullptr) {
                section->clear();
            }
        },
        [&](int /*number*/, const KeyAndValue& line) {
            if (section == nullptr || line.key.isNull()) {
                return;
            }
            const QString key = line.key.toString();
            if (keys == nullptr || keys->contains(key)) {
                section->insert(key, line.value.toString());
            }
        },
        [](int /*number*/) {});
    return sections;
}
