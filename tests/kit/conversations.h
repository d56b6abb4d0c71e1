// What an instrument's record of lines says about who talked to it: the conversations one after the
// other, by their names. Each ends with "&GTL".
#pragma once

#include "kit/bench_instrument.h"

#include <QStringList>

struct Conversation
{
    QString name; // or what is wrong with it
    int connection;
    BenchInstrument::Clock::time_point from;
    BenchInstrument::Clock::time_point to;
};

// The commands without their values, separated by blanks; automatic or by number is the same.
inline QString shapeOf(const QList<BenchInstrument::Line>& lines)
{
    QStringList words;
    for (const BenchInstrument::Line& line : lines) {
        const QString word =
            QString::fromLatin1(line.text.split(' ').first()).remove(QStringLiteral(":AUTO"));
        if (!word.isEmpty()) {
            words.append(word);
        }
    }
    return words.join(QLatin1Char(' '));
}

// The name of a conversation that is whole; one that is not is told with its shape.
inline QString nameOf(const QString& shape)
{
    static const QHash<QString, QString> names = {
        {"*IDN?", "init"},
        {"FREQ:CENT FREQ:SPAN DISP:WIND1:TRAC:Y:RLEV INP:ATT INP:ATT BAND:RES BAND:VID SWE:TIME "
         "*IDN?",
         "set"},
        {"OUTP IQ:STAT FREQ POW *IDN?", "set"},
        {"*RST", "reset"},
        {"FREQ:CENT FREQ:SPAN POW:ACH:BWID POW:ACH:BWID:ACH POW:ACH:SPAC DISP:WIND1:TRAC:Y:RLEV "
         "INP:ATT INP:ATT BAND:RES BAND:VID SWE:TIME",
         "tune"},
        {"INIT:CONT INIT;*WAI *CLS;:CALC1:MARK1:FUNC:POW:RES?", "pass"},
        {"SENS:DET1:FUNC :CALC1:MARK1:FUNC:POW:SEL :SENS1:POW:ACH:ACP "
         ":CALC1:MARK1:FUNC:POW:RES:PHZ POW:ACH:MODE INP:ATT BAND:RES BAND:VID SWE:TIME "
         "DISP:WIND1:TRAC:Y:RLEV",
         "channel power"},
    };
    return names.value(shape, QStringLiteral("torn: ") + shape);
}

// Those that have ended. One that goes on over several connections is torn.
inline QList<Conversation> conversationsWith(const BenchInstrument& instrument)
{
    QList<Conversation> result;
    QList<BenchInstrument::Line> present;
    const QList<BenchInstrument::Line> lines = instrument.lines();
    for (const BenchInstrument::Line& line : lines) {
        if (!present.isEmpty() && present.last().connection != line.connection) {
            result.append({QStringLiteral("torn off: ") + shapeOf(present),
                           present.last().connection, present.first().at, line.at});
            present.clear();
        }
        if (line.text != "&GTL") {
            present.append(line);
            continue;
        }
        const auto from = present.isEmpty() ? line.at : present.first().at;
        result.append({nameOf(shapeOf(present)), line.connection, from, line.at});
        present.clear();
    }
    return result;
}

// Their names in one line.
inline QString spokenWith(const BenchInstrument& instrument)
{
    QStringList names;
    for (const Conversation& each : conversationsWith(instrument)) {
        names.append(each.name);
    }
    return names.join(QStringLiteral(", "));
}

inline int countWith(const BenchInstrument& instrument, const QString& name)
{
    int count = 0;
    for (const Conversation& each : conversationsWith(instrument)) {
        count += each.name == name ? 1 : 0;
    }
    return count;
}
