// Bytes from a stream into lines, however they were split or joined on the way. Holds a bounded
// number of bytes.
#pragma once

#include <QByteArray>

#include <optional>

struct ReceivedLine
{
    QByteArray text;      // without its end, CR or LF or both
    bool overrun = false; // the line was longer than allowed; text holds its beginning
};

class LineBuffer
{
public:
    void append(const QByteArray& bytes) { pending += bytes; }

    // The next finished line, if there is one.
    std::optional<ReceivedLine> takeLine();

    static constexpr int longestLine = 4096;

private:
    QByteArray pending;
    int start = 0;           // of what was not yet taken
    QByteArray overrunStart; // the beginning of a line that is being dropped
    bool dropping = false;
};
