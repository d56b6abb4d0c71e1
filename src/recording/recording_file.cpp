#include "recording/recording_file.h"

#include "base/regular_file.h"
#include "recording/npy_recording.h"
#include "recording/sigmf_recording.h"
#include "recording/wav_recording.h"

#include <algorithm>

namespace {

struct FileForm
{
    const char* ending;
    Recording (*open)(const QString& path);
};

const FileForm fileForms[] = {
    {".sigmf-meta", openSigmf},
    {".sigmf-data", openSigmf},
    {".npy", openNpy},
    {".wav", openWav},
};

// A file without a head. A sample that was cut off at the end doesn't count.
Recording openRaw(const QString& path, const SampleType* type)
{
    Recording recording;
    recording.name = path;
    recording.paths = QStringList{path};
    recording.type = type;
    recording.samples = QFileInfo(path).size() / type->bytes;
    return recording;
}

void requireFile(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        const QString reason = !file.exists()              ? "there is no such file"
                               : QFileInfo(path).isDir()   ? "it is a folder"
                               : !QFileInfo(path).isFile() ? "it is no regular file; save it first"
                                                           : file.errorString();
        throw RecordingError{"can't read recording " + path + ": " + reason};
    }
}

// A name that ends in that of a type tells it too, as in noise.cf32.
const SampleType* rawTypeOf(const QString& path, const SampleType* given)
{
    const SampleType* const type =
        given != nullptr ? given : sampleTypeOf(QFileInfo(path).suffix());
    if (type == nullptr) {
        throw RecordingError{"can't tell how " + path + " keeps its samples; give --type " +
                             sampleTypeNames().join('|') +
                             " for a raw file, or name a .sigmf-meta, .npy or .wav file"};
    }
    return type;
}

// Those that a head claims have to be there.
void requireSamples(const Recording& recording)
{
    const qint64 bytesInEach = recording.type->bytes / recording.paths.size();
    for (const QString& path : recording.paths) {
        const qint64 there = (QFileInfo(path).size() - recording.offset) / bytesInEach;
        if (recording.samples > there) {
            throw RecordingError{QStringLiteral("%1 is cut short: it claims %2 samples and has %3")
                                     .arg(recording.name)
                                     .arg(recording.samples)
                                     .arg(std::max<qint64>(there, 0))};
        }
    }
    if (recording.samples <= 0) {
        throw RecordingError{recording.name + " holds no sample"};
    }
}

} // namespace

Recording openRecording(const QString& path, const SampleType* rawType)
{
    requireFile(path);
    const auto* const form =
        std::find_if(std::begin(fileForms), std::end(fileForms), [&path](const FileForm& one) {
            return path.endsWith(QLatin1String(one.ending), Qt::CaseInsensitive);
        });
    Recording recording =
        form != std::end(fileForms) ? form->open(path) : openRaw(path, rawTypeOf(path, rawType));
    requireSamples(recording);
    return recording;
}
