// What the dialog asks for, as typed. Its words are those of the command line, which alone decides
// what is valid: nothing is checked here. Any thread.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

struct MeasureOrder
{
    QString config = QStringLiteral("default"); // a file, or that word for the program's defaults
    QString notches; // "COUNT,WIDTH_HZ,DEPTH_DB,OFFSET_HZ"; empty: config's
    bool isSimulated = true;
    QString device;
    QMap<QString, QString> figures; // of the device, by their keys; empty ones are left out
    QString others;                 // more of them, "KEY=VALUE,..."
    QString from;                   // levels, dBm
    QString to;
    QString step;      // dB
    QString notchRows; // "1,3"; empty for all
    QString averages;
    QString settling; // s
    QString limit;
    QStringList thresholds;
    QString theory;   // a device with its numbers, or "same"
    QString subtract; // a file
};

// "DEVICE,KEY=VALUE,...", without figures that are empty.
QString deviceWord(const QString& device, const QMap<QString, QString>& figures,
                   const QString& others);

// Behind "notchbench-cli".
QStringList wordsOf(const MeasureOrder& order);

// For a shell, with what it would take apart in quotes.
QString commandLineOf(const QStringList& words);

// The same to be read: continued, as a shell allows it, in another line before an option that would
// make more than so many letters of one.
QString commandLinesOf(const QStringList& words, int most);
