#include "recording/npy_recording.h"

#include "base/regular_file.h"

#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr int magicBytes = 8; // with the version
constexpr quint32 mostHeaderBytes = 1 << 20;

struct ArrayType
{
    const char* descr;
    const char* single; // sample type of shape (N,); null for none
    const char* paired; // of shape (N, 2)
};

const ArrayType arrayTypes[] = {
    {"<c8", "cf32", nullptr}, {"<c16", "cf64", nullptr}, {"<f4", "rf32", "cf32"},
    {"<f8", "rf64", "cf64"},  {"<i2", "ri16", "ci16"},
};

// What stands between the braces, and where the samples begin.
struct Head
{
    QString text;
    qint64 end = 0;
};

Head readHead(QFile& file)
{
    const QByteArray magic = file.read(magicBytes);
    if (magic.size() < magicBytes || !magic.startsWith("\x93NUMPY")) {
        refuseFile(file.fileName(), QStringLiteral("it is no NumPy array"));
    }
    const int version = static_cast<unsigned char>(magic.at(6));
    if (version < 1 || version > 3) {
        refuseFile(file.fileName(),
                   QStringLiteral("version %1 of its form isn't known").arg(version));
    }
    const int sizeBytes = version == 1 ? 2 : 4;
    const QByteArray size = file.read(sizeBytes);
    if (size.size() < sizeBytes) {
        refuseFile(file.fileName(), QStringLiteral("it ends in its head"));
    }
    const quint32 length = version == 1 ? qFromLittleEndian<quint16>(size.constData())
                                        : qFromLittleEndian<quint32>(size.constData());
    if (length > mostHeaderBytes) {
        refuseFile(file.fileName(), QStringLiteral("its head claims %1 bytes").arg(length));
    }
    const QByteArray text = file.read(length);
    if (text.size() < static_cast<int>(length)) {
        refuseFile(file.fileName(), QStringLiteral("it ends in its head"));
    }
    return {QString::fromUtf8(text), file.pos()};
}

QString entryOf(const Head& head, const char* pattern, const QString& path, const char* name)
{
    const QRegularExpressionMatch match =
        QRegularExpression(QLatin1String(pattern)).match(head.text);
    if (!match.hasMatch()) {
        refuseFile(path, QStringLiteral("its head has no plain \"%1\"").arg(QLatin1String(name)));
    }
    return match.captured(1);
}

QVector<qint64> shapeOf(const QString& text, const QString& path)
{
    QVector<qint64> shape;
    for (const QString& word : text.split(',', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const qint64 count = word.trimmed().toLongLong(&isNumber);
        if (!isNumber || count < 0) {
            refuseFile(path, "its shape (" + text + ") isn't one");
        }
        shape << count;
    }
    return shape;
}

const SampleType* sampleTypeOf(const QString& descr, bool isPaired, const QString& path)
{
    if (descr.startsWith('>')) {
        refuseFile(path, "its numbers are big-endian (" + descr + "); save it as little-endian");
    }
    for (const ArrayType& type : arrayTypes) {
        const char* const name = isPaired ? type.paired : type.single;
        if (descr == QLatin1String(type.descr) && name != nullptr) {
            return sampleTypeOf(QString(name));
        }
    }
    refuseFile(path, "an array of " + descr + (isPaired ? " in two columns" : "") +
                         " isn't taken; save complex64, complex128, float32, float64 or int16, the "
                         "last three in two columns too");
}

} // namespace

Recording openNpy(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        refuseFile(path, file.errorString());
    }
    const Head head = readHead(file);
    const QString descr = entryOf(head, R"('descr'\s*:\s*'([^']*)')", path, "descr");
    const QString order =
        entryOf(head, R"('fortran_order'\s*:\s*(True|False))", path, "fortran_order");
    const QVector<qint64> shape =
        shapeOf(entryOf(head, R"('shape'\s*:\s*\(([^)]*)\))", path, "shape"), path);
    const bool isPaired = shape.size() == 2 && shape.at(1) == 2;
    if (shape.size() != 1 && !isPaired) {
        refuseFile(path, QStringLiteral("its shape is neither (N,) nor (N, 2)"));
    }
    if (isPaired && order == "True") {
        refuseFile(path,
                   QStringLiteral("its columns lie one behind the other (Fortran order); save "
                                  "numpy.ascontiguousarray of it"));
    }
    Recording recording;
    recording.name = path;
    recording.paths = QStringList{path};
    recording.type = sampleTypeOf(descr, isPaired, path);
    recording.offset = head.end;
    recording.samples = shape.at(0);
    return recording;
}
