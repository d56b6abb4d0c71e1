// The grammar of SCPI without any meaning: lines into units, headers against patterns. Pure text;
// any thread.
#pragma once

#include <QByteArray>
#include <QList>
#include <QVector>

#include <vector>

// One command or query of a line.
struct ScpiUnit
{
    QByteArray header;   // from the root, without a leading colon and without the "?"
    bool query = false;  // the header ended in "?"
    QByteArray argument; // what follows the header, trimmed; may be empty
};

// The units of a line, divided at ";" outside quotes. A header without a leading colon continues
// the path of the unit before it; words that begin with "*", "&" or "@" stand outside all paths.
// Empty units are left out. Takes any bytes.
QVector<ScpiUnit> scpiUnits(const QByteArray& line);

// A header as manuals write it: "[SENSe:]POWer:ACHannel:BWIDth[:CHANnel]". Capitals are the short
// form, the whole word is the long form, brackets hold what may be left out. Keywords match in
// either form and any case. A number behind a keyword must be the pattern's own, and 1 is the
// number of a keyword without one.
class ScpiPattern
{
public:
    explicit ScpiPattern(const char* text);

    bool matches(const QByteArray& header) const;

private:
    struct Keyword
    {
        QByteArray shortForm;
        QByteArray longForm;
        QByteArray number;
        bool optional;
    };

    static Keyword keyword(QByteArray text, bool optional);
    static bool fits(const Keyword& keyword, const QByteArray& word);
    bool matchesFrom(std::size_t keyword, const QList<QByteArray>& words, int word) const;

    std::vector<Keyword> keywords;
};
