// The operator of the soak, the clients and the simulator that are used beside the window.
//
// To add an action: a member and its row in the table of soak_operator.cpp.
#pragma once

#include "app/main_window.h"
#include "kit/window_driver.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

class SoakOperator
{
public:
    // configs: a folder of configurations, good and bad, that are loaded now and then.
    // The same seed draws the same actions.
    SoakOperator(MainWindow& window, const QString& configs, quint32 seed = 1);
    ~SoakOperator();
    SoakOperator(const SoakOperator&) = delete;
    SoakOperator& operator=(const SoakOperator&) = delete;

    // Every action a few times, so that nothing is new afterwards.
    void warmUp();

    // One action after the other, with clients and simulator running.
    void work(int seconds);
    // Lets work() end with the action in progress.
    void stop() { stopped = true; }

    // Brings the window to the state in which levels are compared, without clients and simulator.
    void restore();

    qint64 actions() const { return actionCount; }

    // What came of the actions so far. Where one is missing, the soak has tested nothing.
    struct Outcome
    {
        int madeSignals = 0;
        int connections = 0; // to the analyzer
        int readings = 0;
        int answers = 0;      // to the polling client
        int missedStarts = 0; // of clients and simulator

        bool isWhole() const
        {
            return madeSignals > 0 && connections > 0 && readings > 0 && answers > 0 &&
                   missedStarts == 0;
        }
    };
    const Outcome& outcome() const { return come; }

private:
    struct Action;
    static const Action table[];

    template <typename Dialog> static QList<Dialog*> dialogs()
    {
        QList<Dialog*> found;
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (QWidget* widget : widgets) {
            if (auto* dialog = qobject_cast<Dialog*>(widget)) {
                found.append(dialog);
            }
        }
        return found;
    }

    void startClients();
    void startSimulator();
    void end(QProcess& process);
    void answerBoxes();
    void observe();
    void load(const QString& path);
    void makeInputs();

    void calculate();
    void calculateFromFiles();
    void makeNotches();
    void editCell();
    void dragOnTheGraph();
    void loadAnyConfig();
    void saveWaveform();
    void saveConfigFile();
    void initInstruments();
    void preset();
    void measure();
    void measureContinuously();
    void measureFromTheStart();
    void sweepSeeds();
    void loadTrace();
    void loadTraceBy(const char* button, int patience);
    void killSimulator();
    void resize();

    MainWindow& window;
    WindowDriver operate;
    QTemporaryDir folder;
    QStringList configs;
    QTimer boxes;
    QProcess clients;
    QProcess simulator;
    QRandomGenerator random;
    bool stopped = false;
    quint16 port = 0;
    qint64 actionCount = 0;
    Outcome come;
    bool wasConnected = false;
};
