#include "base/dropping_output.h"
#include "base/failed_writes.h"
#include "base/freed_memory.h"
#include "base/standard_streams.h"
#include "base/stop_signals.h"
#include "curves/curves_window.h"
#include "look/house_look.h"
#include "look/steady_application.h"

#include <QTimer>

int main(int argc, char* argv[])
{
    holdClosedStandardStreams();
    outliveFailedWrites();
    dropMessagesThatWait();
    returnFreedMemory();
    prepareHouseLook();
    SteadyApplication application(argc, argv);
    applyHouseLook(application);
    const StopSignals stop;
    QObject::connect(&stop, &StopSignals::requested, &application, &QApplication::quit);
    CurvesWindow window;
    window.open(QApplication::arguments().mid(1));
    window.show();
    QTimer::singleShot(0, &window, &CurvesWindow::offerDrafts);
    return QApplication::exec();
}
