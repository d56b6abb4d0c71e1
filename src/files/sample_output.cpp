#include "files/sample_output.h"

#include "base/whole_file.h"
#include "files/float_samples.h"
#include "files/sigmf_metadata.h"
#include "setup/measurement_setup.h"

#include <QCryptographicHash>

#include <new>

namespace {

// Magic, version 1.0, length of the text, the text padded with blanks so that the samples begin at
// a multiple of 64 bytes.
QByteArray npyHeader(int count)
{
    constexpr int fixedSize = 10;
    constexpr int alignment = 64;
    QByteArray text =
        "{'descr': '<c8', 'fortran_order': False, 'shape': (" + QByteArray::number(count) + ",), }";
    while ((fixedSize + text.size() + 1) % alignment != 0) {
        text += ' ';
    }
    text += '\n';
    QByteArray header("\x93NUMPY\x01\x00", 8);
    header += static_cast<char>(text.size() & 0xFF);
    header += static_cast<char>(text.size() >> 8);
    return header + text;
}

bool writeOneFile(const SignalData& signal, const QByteArray& header, const QString& path)
{
    WholeFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(header);
    writeFloatSamples(file, signal);
    return file.putInPlace();
}

bool writeTwoFiles(const MeasurementSetup& setup, const QString& program, const QString& baseName)
{
    WholeFile data(baseName + ".sigmf-data");
    WholeFile metadata(baseName + ".sigmf-meta");
    if (!data.open(QIODevice::WriteOnly) || !metadata.open(QIODevice::WriteOnly)) {
        return false;
    }
    QCryptographicHash hash(QCryptographicHash::Sha512);
    writeFloatSamples(data, setup.signal, &hash);
    metadata.write(sigmfMetadata(setup, program, hash.result()));
    return putBothInPlace(data, metadata);
}

// Whether it did its work; a lack of memory is a failure like any other.
template <typename Write> bool succeeds(Write write)
{
    try {
        return write();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

bool writeRawFile(const SignalData& signal, const QString& path)
{
    return succeeds([&] { return writeOneFile(signal, {}, path); });
}

bool writeNpyFile(const SignalData& signal, const QString& path)
{
    return succeeds([&] { return writeOneFile(signal, npyHeader(sampleCount(signal)), path); });
}

bool writeSigmfFiles(const MeasurementSetup& setup, const QString& program, const QString& baseName)
{
    return succeeds([&] { return writeTwoFiles(setup, program, baseName); });
}
