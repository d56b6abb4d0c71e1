#include "cli/commands.h"

#include "cli/made_signal.h"
#include "cli/setup_arguments.h"
#include "cli/values.h"
#include "status/status_server.h"

#include <QEventLoop>

namespace {

void serve(MeasurementSetup& setup, const Session& session)
{
    QObject parent;
    StatusServer server(setup, &parent);
    server.listen(setup.tcpPort);
    if (server.port() == 0) {
        failFile(QStringLiteral("can't listen on port %1: another program uses it, or ports below "
                                "1024 are reserved for root; choose another with --port")
                     .arg(setup.tcpPort));
    }
    session.console.print(QStringLiteral("serving %1 samples at %2 Hz on port %3\n")
                              .arg(setup.signal.length)
                              .arg(QString::number(setup.sampleRate, 'g', 9))
                              .arg(server.port()));
    QEventLoop loop;
    QObject::connect(&session.stop, &StopSignals::requested, &loop, &QEventLoop::quit);
    if (session.stop.received() == 0) {
        loop.exec();
    }
}

ExitStatus run(const Session& session)
{
    constexpr int highestPort = 65535;
    MeasurementSetup setup = readSetup(session.arguments, session.console);
    setup.tcpPort = static_cast<quint16>(
        wholeNumberOr(session.arguments, "port", 0, highestPort, setup.tcpPort));
    makeSignal(setup);
    warnUnlessNoiseLike(statisticsOf(setup.signal), session.console);
    setup.setDataState(DataState::Valid);
    serve(setup, session);
    return ExitStatus::Done;
}

} // namespace

Command serveCommand()
{
    return {"serve",
            "Calculate the signal and serve it over TCP as the window does, until Ctrl+C.",
            "CONFIG",
            "serve default --notches 9,1e6,-100,0 --port 10000",
            Options{{"port", "N", "Port in place of CONFIG's; 0 takes any free one."}} +
                setupOptions(),
            run};
}
