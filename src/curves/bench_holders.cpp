#include "curves/bench_holders.h"

#include "setup/measurement_setup.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QtEndian>

namespace {

constexpr quint16 instrumentPort = 5025; // SCPI over a raw socket

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> inodesOfOurs()
{
    const QString prefix = QStringLiteral("socket:[");
    QList<QByteArray> inodes;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QString& name : folder.entryList(QDir::System | QDir::Files)) {
        const QString target = QFile::symLinkTarget(folder.filePath(name)).section('/', -1);
        if (target.startsWith(prefix)) {
            inodes << target.mid(prefix.size()).chopped(1).toLatin1();
        }
    }
    return inodes;
}

// As the table writes them.
QByteArray peerText(const QString& address, quint16 port)
{
    const quint32 inNetworkOrder = qToBigEndian(QHostAddress(address).toIPv4Address());
    return QStringLiteral("%1:%2")
        .arg(inNetworkOrder, 8, 16, QLatin1Char('0'))
        .arg(port, 4, 16, QLatin1Char('0'))
        .toUpper()
        .toLatin1();
}

} // namespace

bool isHeldByOthers(const QByteArray& table, const QString& address, quint16 port,
                    const QList<QByteArray>& ownInodes)
{
    enum Field { Peer = 2, State = 3, Inode = 9 };
    const QByteArray peer = peerText(address, port);
    for (const QByteArray& line : table.split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > Inode && fields.at(Peer) == peer && fields.at(State) == "01" &&
            !ownInodes.contains(fields.at(Inode))) {
            return true;
        }
    }
    return false;
}

QString holdersNotice(const MeasurementSetup& setup)
{
    const QByteArray table = contentOf(QStringLiteral("/proc/net/tcp"));
    const QList<QByteArray> ours = inodesOfOurs();
    QStringList held;
    for (const Instrument* instrument : {static_cast<const Instrument*>(&setup.generator),
                                         static_cast<const Instrument*>(&setup.analyzer)}) {
        const bool hasSocket = instrument->interfaceKind == InterfaceKind::LanSocket;
        if (hasSocket && isHeldByOthers(table, instrument->ipAddress, instrumentPort, ours) &&
            !held.contains(instrument->ipAddress)) {
            held << instrument->ipAddress;
        }
    }
    return held.isEmpty()
               ? QString()
               : QStringLiteral("Another program of this machine is connected with %1, perhaps the "
                                "window of Notchbench. Most instruments speak with one program at "
                                "a time: close it first.")
                     .arg(held.join(QStringLiteral(" and ")));
}
