#include "files/magnitude_phase_output.h"

#include "base/whole_file.h"
#include "setup/signal_data.h"

#include <QLocale>

namespace {

QByteArray numberText(double value)
{
    return QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

} // namespace

bool saveMagnitudePhaseFile(const SignalData& signal, const QString& path)
{
    constexpr int pieceSize = 1 << 17; // bytes
    WholeFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QByteArray piece = QByteArray::number(signal.length) + '\n';
    for (int i = 0; i < signal.length; ++i) {
        piece += QByteArray::number(i) + ' ' + numberText(signal.phase.at(i)) + ' ' +
                 numberText(signal.magnitude.at(i)) + '\n';
        if (piece.size() >= pieceSize) {
            file.write(piece);
            piece.clear();
        }
    }
    file.write(piece);
    return file.putInPlace();
}
