#include "simulator/trace_file.h"

#include <QSaveFile>

bool writeTrace(const QString& path, const Ripple& ripple, int points, double sampleRate,
                QString& errorText)
{
    QSaveFile file(path); // no reader finds half a trace
    if (!file.open(QIODevice::WriteOnly)) {
        errorText = path + ": " + file.errorString();
        return false;
    }
    const double spacing = sampleRate / points;
    const int carrier = points / 2;
    for (int k = 0; k < points; ++k) {
        const double offset = (k - carrier) * spacing;
        file.write(QByteArray::number(offset, 'f', 3) + ';' +
                   QByteArray::number(ripple.gain(offset), 'f', 6) + '\n');
    }
    if (!file.commit()) {
        errorText = path + ": " + file.errorString();
        return false;
    }
    return true;
}
