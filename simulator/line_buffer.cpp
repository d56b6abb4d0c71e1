#include "simulator/line_buffer.h"

#include <utility>

std::optional<ReceivedLine> LineBuffer::takeLine()
{
    const int end = pending.indexOf('\n', start);
    const int length = (end < 0 ? pending.size() : end) - start;
    if (!dropping && length > longestLine) {
        dropping = true;
        overrunStart = pending.mid(start, longestLine);
    }
    if (end < 0) {
        pending.remove(0, dropping ? pending.size() : start);
        start = 0;
        return {};
    }
    ReceivedLine line{dropping ? std::exchange(overrunStart, QByteArray())
                               : pending.mid(start, length),
                      std::exchange(dropping, false)};
    if (line.text.endsWith('\r')) {
        line.text.chop(1);
    }
    start = end + 1;
    return line;
}
