#include "files/plain_lines.h"

#include <cstring>

namespace {

constexpr int pieceSize = 1 << 20;
constexpr int longestLine = 1 << 29; // bytes; a longer one is no concern of speed

bool isPlainText(const char* bytes, int count)
{
    bool plain = true;
    for (int i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool printable = byte >= 0x20 && byte <= 0x7E;
        const bool blank = byte >= 0x09 && byte <= 0x0D;
        plain &= printable || blank;
    }
    return plain;
}

} // namespace

bool PlainLines::next(TextRange& line)
{
    for (;;) {
        const char* begin = text.constData() + from;
        const auto left = static_cast<std::size_t>(text.size() - seen);
        const void* feed = left > 0 ? std::memchr(text.constData() + seen, '\n', left) : nullptr;
        if (feed != nullptr) {
            line = {begin, static_cast<const char*>(feed)};
            from += static_cast<int>(line.size()) + 1;
            seen = from;
            return true;
        }
        seen = text.size();
        if (fetch()) {
            continue;
        }
        line = {text.constData() + from, text.constData() + text.size()};
        from = text.size();
        return plain && line.size() > 0;
    }
}

// Moves what is left to the front and reads on. False at the end and where it isn't plain.
bool PlainLines::fetch()
{
    text.remove(0, from);
    seen -= from;
    from = 0;
    const int kept = text.size();
    plain = plain && kept <= longestLine;
    text.resize(kept + pieceSize);
    const qint64 count = plain ? file.read(text.data() + kept, pieceSize) : 0;
    text.resize(kept + static_cast<int>(qMax<qint64>(count, 0)));
    plain = plain && isPlainText(text.constData() + kept, text.size() - kept);
    return plain && text.size() > kept;
}
