#include "recording/sample_reader.h"

#include "base/regular_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <unistd.h>

namespace {

// Halves of samples, size bytes each, one of each in turns.
void interleave(const char* one, const char* other, int size, qint64 count, char* to)
{
    for (qint64 k = 0; k < count; ++k) {
        std::memcpy(to + 2 * k * size, one + k * size, static_cast<std::size_t>(size));
        std::memcpy(to + (2 * k + 1) * size, other + k * size, static_cast<std::size_t>(size));
    }
}

} // namespace

SampleReader::SampleReader(Recording itsRecording) : source(std::move(itsRecording))
{
    for (const QString& path : source.paths) {
        auto file = std::make_unique<QFile>(path);
        if (!openRegular(*file)) {
            throw RecordingError{"can't read " + path + ": " + file->errorString()};
        }
        files.push_back(std::move(file));
    }
}

SampleReader::~SampleReader() = default;

void SampleReader::read(qint64 first, qint64 count, std::vector<char>& raw) const
{
    const qint64 bytes = count * source.type->bytes;
    raw.resize(static_cast<std::size_t>(bytes));
    if (files.size() == 1) {
        readBytes(*files[0], source.offset + first * source.type->bytes, bytes, raw.data());
        return;
    }
    const int half = source.type->bytes / 2;
    std::vector<char> halves(static_cast<std::size_t>(bytes));
    char* const other = halves.data() + count * half;
    readBytes(*files[0], source.offset + first * half, count * half, halves.data());
    readBytes(*files[1], source.offset + first * half, count * half, other);
    interleave(halves.data(), other, half, count, raw.data());
}

ComplexBuffer SampleReader::samples(qint64 first, qint64 count, qint64 length) const
{
    std::vector<char> raw;
    read(first, count, raw);
    std::vector<double> re(static_cast<std::size_t>(count));
    std::vector<double> im(re.size());
    source.type->toParts(raw.data(), count, {re.data(), im.data()});
    ComplexBuffer all(static_cast<quint64>(length));
    for (std::size_t k = 0; k < re.size(); ++k) {
        all[k] = {re[k], im[k]};
    }
    return all;
}

void SampleReader::readBytes(const QFile& file, qint64 position, qint64 size, char* to) const
{
    while (size > 0) {
        const ssize_t got = pread(file.handle(), to, static_cast<std::size_t>(size), position);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            const QString reason = got == 0 ? QStringLiteral("it became shorter meanwhile")
                                            : QString::fromLocal8Bit(std::strerror(errno));
            throw RecordingError{"can't read " + file.fileName() + ": " + reason};
        }
        to += got;
        position += got;
        size -= got;
    }
}
