// The lines of a text file as runs of bytes, read in large pieces.
//
// Text of plain ASCII reads the same in every encoding that QTextStream may choose. As soon as any
// other byte turns up the reader stops, and its caller starts again with a QTextStream.
#pragma once

#include "files/decimal_text.h"

#include <QByteArray>
#include <QFile>

class PlainLines
{
public:
    explicit PlainLines(QFile& source) : file(source) {}

    // The next whole lines, some megabytes of them, with their line feeds; the last one of the
    // file may have none. Valid until the next call. False at the end and where the text isn't
    // plain.
    bool next(TextRange& lines);

    bool isPlain() const { return plain; }

private:
    bool fetch();

    QFile& file;
    QByteArray text;
    int given = 0; // bytes that the last call gave out
    bool plain = true;
};

// Takes the first line off; returns it without its line feed.
TextRange takeLine(TextRange& lines);
