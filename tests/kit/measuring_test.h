// What tests of whole measurements share: the real window with its "Devices", the simulated bench
// in a process of its own, and the operator's road from settings to readings.
#pragma once

#include "kit/background_jobs.h"
#include "kit/main_window_test.h"
#include "kit/simulator_process.h"
#include "kit/top_level.h"

#include <QTcpServer>
#include <QTcpSocket>

struct Reading
{
    double power; // dBm
    double lower; // dB
    double upper; // dB
};

class MeasuringTest : public MainWindowTest
{
protected:
    // The window with "Devices" and a carrier at 1 GHz; no bench yet.
    void openBench()
    {
        openWindow();
        devices = std::make_unique<WindowDriver>(openDevices(*operate));
        devices->type("g_frequency", "1000");
        showTab(1);
        devices->type("a_frequency", "1000");
    }

    void closeBench()
    {
        simulator.reset();
        devices.reset();
        closeWindow();
    }

    // The bench plays what the window's status server tells, on port 1000 or, where the system
    // keeps that from ordinary users, on a free one.
    void start(const QStringList& options)
    {
        const auto* server = window->findChild<QTcpServer*>();
        if (server == nullptr || !server->isListening()) {
            operate->type("port_input", "42420");
        }
        simulator.reset();
        // The newest server is the present one; a former one goes a little later.
        const quint16 port = window->findChildren<QTcpServer*>().constLast()->serverPort();
        simulator = std::make_unique<SimulatorProcess>(port, options);
        QVERIFY(simulator->isReady());
        QVERIFY(simulator->logs("playing"));
    }

    void makeSignal(int lengthRow, int notches, double widthMhz, double offsetMhz, double depth,
                    double bandwidthRatio = 0.8)
    {
        operate->pick("fft_length_input", lengthRow);
        operate->type("nbw_srate_input", QString::number(bandwidthRatio));
        operate->type("notch_count_input", QString::number(notches));
        operate->type("notch_width_input", QString::number(widthMhz));
        operate->type("notch_offset_input", QString::number(offsetMhz));
        operate->type("notch_depth_input", QString::number(depth));
        operate->click("autocalc_notches_button");
        QCOMPARE(operate->rowCount(), notches);
        calculate();
    }

    void showTab(int tab) const { devices->find<QTabWidget>("tabWidget")->setCurrentIndex(tab); }

    void waitForJobs() const
    {
        // The bench fetches the samples from this very thread, so it must go on meanwhile.
        QVERIFY(backgroundJobsEnd(60000));
    }

    void preset()
    {
        operate->click("preset_button");
        QVERIFY(simulator->logs("SENS:DET1:FUNC RMS"));
        waitForJobs();
    }

    // The bench computes a new signal in the first reading of it, which on a busy machine takes
    // longer than the program waits for an answer. Here the first reading is somebody else's.
    void letTheBenchCompute() const
    {
        QTcpSocket other;
        other.connectToHost(QStringLiteral("127.0.0.1"), 5025);
        other.write("POW:ACH:BWID 1e6\nPOW:ACH:SPAC 1e6\nINIT:CONT OFF\nINIT;*WAI\n"
                    "CALC:MARK:FUNC:POW:RES? ACP\n");
        QTRY_VERIFY_WITH_TIMEOUT(other.canReadLine(), 60000);
    }

    Reading measure(int notch)
    {
        operate->type("measure_notch", "0");
        operate->type("measure_notch", QString::number(notch));
        operate->click("measure_button");
        waitForJobs();
        return {operate->text("signal_power").toDouble(), operate->text("npr_lower").toDouble(),
                operate->text("npr_upper").toDouble()};
    }

    std::unique_ptr<WindowDriver> devices;
    std::unique_ptr<SimulatorProcess> simulator;
};
