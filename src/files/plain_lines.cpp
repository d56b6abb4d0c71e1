#include "files/plain_lines.h"

#include "transform/vector_clones.h"

#include <cstring>

namespace {

constexpr int pieceSize = 1 << 22;
constexpr int longestLine = 1 << 29; // bytes; a longer one is no concern of speed

VECTOR_CLONES
bool isPlainText(const char* bytes, int count)
{
    unsigned char odd = 0;
    for (int i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool printable = static_cast<unsigned char>(byte - 0x20) <= 0x7E - 0x20;
        const bool blank = static_cast<unsigned char>(byte - 0x09) <= 0x0D - 0x09;
        odd |= static_cast<unsigned char>(!printable & !blank);
    }
    return odd == 0;
}

// Where the last line of the text ends, looking no further back than to `searched`; 0 for no end.
int endOfLines(const QByteArray& text, int searched)
{
    int end = text.size();
    while (end > searched && text.at(end - 1) != '\n') {
        --end;
    }
    return end > searched ? end : 0;
}

} // namespace

bool PlainLines::next(TextRange& lines)
{
    text.remove(0, given);
    given = 0;
    while (given == 0) {
        const int searched = text.size();
        if (!fetch()) {
            given = text.size(); // the last line, or nothing
            break;
        }
        given = endOfLines(text, searched);
    }
    lines = {text.constData(), text.constData() + given};
    return plain && given > 0;
}

// Appends a piece. False at the end and where it isn't plain.
bool PlainLines::fetch()
{
    const int kept = text.size();
    plain = plain && kept <= longestLine;
    text.resize(kept + pieceSize);
    const qint64 count = plain ? file.read(text.data() + kept, pieceSize) : 0;
    text.resize(kept + static_cast<int>(qMax<qint64>(count, 0)));
    plain = plain && isPlainText(text.constData() + kept, text.size() - kept);
    return plain && text.size() > kept;
}

TextRange takeLine(TextRange& lines)
{
    const void* feed = lines.size() > 0
                           ? std::memchr(lines.begin, '\n', static_cast<std::size_t>(lines.size()))
                           : nullptr;
    const char* end = feed != nullptr ? static_cast<const char*>(feed) : lines.end;
    const TextRange line{lines.begin, end};
    lines.begin = feed != nullptr ? end + 1 : end;
    return line;
}
