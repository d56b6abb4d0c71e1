#include "remote/ko_visa_interface.h"

#include "remote/ko_remote_exception.h"

namespace {

constexpr quint32 openTimeoutMs = 5000;
constexpr ViAttrState ioTimeoutMs = 10000;
constexpr quint32 bufferSize = 4000; // bytes, enough for short SCPI text

// A positive status is a warning and passes.
void requireNotNegative(ViStatus status, const char* failure)
{
    if (status < 0) {
        throwRemoteException(QLatin1String(failure) + QString::number(status));
    }
}

} // namespace

KOVISAInterface::KOVISAInterface()
{
    visa.requireVisa();
}

void KOVISAInterface::sendSCPI(const QString& command)
{
    QString completion;
    if (visa.sendAndRead(session, command + QLatin1String(";*OPC?\n"), &completion) !=
        visaSuccess) {
        // Deliberate: "querySCPI" for a send also; operators search their logs for it.
        throwRemoteException(QLatin1String("Error at querySCPI: ") + command);
    }
}

QString KOVISAInterface::querySCPI(const QString& command)
{
    QString answer;
    if (visa.sendAndRead(session, command + QLatin1Char('\n'), &answer) == visaSuccess) {
        return answer;
    }
    if (visa.sendAndRead(session, QStringLiteral("SYST:ERR?\n"), &answer) != visaSuccess) {
        throwRemoteException(QLatin1String("RC Error at querySCPI: ") + command);
    }
    throwRemoteException(QLatin1String("Instrument Error at querySCPI: ") + answer);
}

void KOVISAInterface::open()
{
    ViSession resourceManager = 0;
    const ViStatus status = visa.koOpenDefaultRM(&resourceManager);
    // Here a warning counts as failure, too.
    if (status != visaSuccess) {
        throwRemoteException(QLatin1String("Error at koOpenDefaultRM: ") + QString::number(status));
    }
    // Deliberate: a failure from here on leaves the resource manager's session open. The
    // library gives one session per process, which other transports may be using.
    requireNotNegative(visa.koOpen(resourceManager, resourceString(), 0, openTimeoutMs, &session),
                       "Error at koOpen: ");
    requireNotNegative(visa.koSetAttribute(session, VI_ATTR_TMO_VALUE, ioTimeoutMs),
                       "Error at koSetAttribute: ");
    requireNotNegative(visa.koSetBuf(session, VI_READ_BUF | VI_WRITE_BUF, bufferSize),
                       "Error at koSetBuf: ");
    requireNotNegative(visa.koSetAttribute(session, VI_ATTR_WR_BUF_OPER_MODE, VI_FLUSH_ON_ACCESS),
                       "Error at koSetAttribute: ");
}

void KOVISAInterface::close()
{
    if (visa.koClose(session) >= 0) {
        return;
    }
    ViSession resourceManager = 0;
    visa.koGetAttribute(session, VI_ATTR_RM_SESSION, &resourceManager);
    if (visa.koClose(resourceManager) < 0) {
        throwRemoteException(QStringLiteral("Error at koClose"));
    }
}

void KOVISAInterface::goToLocal()
{
    sendSCPI(QStringLiteral("&GTL;@LOC"));
}
