#include "remote/device_text.h"

#include "remote/ko_remote_exception.h"

qint64 DeviceText::writeLine(QIODevice& device, const QString& command)
{
    QByteArray line = command.toLocal8Bit();
    line.append('\n');
    return device.write(line);
}

void DeviceText::sendLine(QIODevice& device, const QString& command)
{
    // Deliberate: only 0 is a failure. A line that has gone away answers -1 and passes;
    // its silence shows in the next answer.
    if (writeLine(device, command) == 0) {
        throwRemoteException(QLatin1String("Error at sendSCPI: ") + command);
    }
}

QString DeviceText::answerFrom(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData()).trimmed();
}
