// What the scenarios of the limited program share: the window, an instrument, a folder, and the
// shortage of the day.
#pragma once

#include "app/main_window.h"
#include "kit/background_jobs.h"
#include "kit/file_content.h"
#include "kit/scripted_instrument.h"
#include "kit/system_limits.h"
#include "kit/window_driver.h"

#include <QProgressBar>
#include <QTableWidget>
#include <QTemporaryDir>

enum class Shortness { Threads, Memory };

// The system refuses every further thread, for itself or for want of memory, and no worker stands
// idle.
class Shortage
{
public:
    explicit Shortage(Shortness kind)
        : limit(kind == Shortness::Threads ? RLIMIT_NPROC : RLIMIT_AS,
                kind == Shortness::Threads ? 0 : addressSpaceInUse() + LargeStacks::size / 2)
    {
    }

private:
    LoweredLimit limit;
    NoIdleWorkers noIdleWorkers;
};

inline void expect(bool holds, const char* what)
{
    if (!holds) {
        qFatal("not so: %s", what);
    }
}

template <class Condition> void await(const char* what, Condition condition)
{
    if (!QTest::qWaitFor(condition, 60000)) {
        qFatal("never came: %s", what);
    }
}

struct LimitedBench
{
    MainWindow& window;
    const WindowDriver operate;
    ScriptedInstrument& device;
    const QTemporaryDir& folder;
    const Shortness kind;
    std::unique_ptr<Shortage>& lasting; // ends after the window

    QString state() const { return operate.text("fft_status_label"); }
    bool isCalculating() const { return state() == QLatin1String("Calculating ..."); }
    bool isActionEnabled(const char* name) const
    {
        return window.findChild<QAction*>(QLatin1String(name))->isEnabled();
    }

    void pressCalculate() const
    {
        operate.click("calc_fft_button");
        await("the end of the calculation", [this] { return !isCalculating(); });
    }
    // Returns the crest factor.
    QString calculate() const
    {
        pressCalculate();
        expect(state() == QLatin1String("Data valid"), "the calculation brings a signal");
        return operate.text("crest_factor_output");
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QByteArray content(const QString& name) const { return contentOf(path(name)); }
    // A trace of an analyzer over the whole default span.
    void writeTrace(const QString& name) const
    {
        QFile file(path(name));
        expect(file.open(QIODevice::WriteOnly), "the trace is written");
        for (int point = 0; point <= 1000; ++point) {
            file.write(QByteArray::number(1e9 + (point - 500) * 1e5) + ";" +
                       QByteArray::number(-20.0 - point * 0.003) + "\n");
        }
    }
    // Answers the file dialog of the action.
    void answer(const char* action, const QString& name) const
    {
        operate.answerFileDialog(path(name));
        operate.trigger(action);
    }
};

// The open dialog of a sweep.
class Sweep
{
public:
    explicit Sweep(const LimitedBench& bench)
    {
        bench.operate.trigger("actionOptimize_Crest_Fector");
        dialog = QApplication::activeModalWidget();
        expect(dialog != nullptr, "the dialog is open");
    }
    ~Sweep() { dialog->close(); }
    Sweep(const Sweep&) = delete;
    Sweep& operator=(const Sweep&) = delete;

    void start(int seeds) const
    {
        const WindowDriver operate(*dialog);
        operate.type("seed_count_input", QString::number(seeds));
        operate.click("start_button");
    }
    // Returns the crest factors; an empty text stands for none.
    QStringList end() const
    {
        const WindowDriver operate(*dialog);
        await("the end of the sweep", [&] { return operate.isEnabled("start_button"); });
        expect(!operate.isEnabled("stop_button"), "there is nothing to stop");
        const auto* progress = operate.find<QProgressBar>("progressBar");
        expect(progress->value() == progress->maximum(), "no seed is awaited");
        const auto* table = operate.find<QTableWidget>("tableWidget");
        QStringList rows;
        for (int row = 0; row < table->rowCount(); ++row) {
            const QTableWidgetItem* item = table->item(row, 0);
            rows.append(item == nullptr ? QString() : item->text());
        }
        return rows;
    }

private:
    QWidget* dialog;
};

struct LimitedScenario
{
    const char* name;
    void (*play)(const LimitedBench&);
    bool startsShort; // the shortage is there before the window, as LimitedBench::lasting
};

extern const QVector<LimitedScenario> jobScenarios;
extern const QVector<LimitedScenario> memoryScenarios;
extern const QVector<LimitedScenario> instrumentScenarios;
