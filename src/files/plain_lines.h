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

    // The next line, without its line feed; valid until the next call. False at the end and where
    // the text isn't plain.
    bool next(TextRange& line);

    bool isPlain() const { return plain; }

private:
    bool fetch();

    QFile& file;
    QByteArray text;
    int from = 0; // first byte that was not given out
    int seen = 0; // bytes that hold no line feed from `from` to here
    bool plain = true;
};
