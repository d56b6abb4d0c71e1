// Calculations, files, traces and sweeps without a further thread.
#include "fit/dialogs/load_trace_dialog.h"
#include "reliability/limited_bench.h"

namespace {

void calculateInTheShortage(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", 12);
    const QString good = bench.calculate();
    {
        const Shortage shortage(bench.kind);
        for (int attempt = 0; attempt < 2; ++attempt) {
            bench.pressCalculate();
            expect(bench.state() == QLatin1String("Data invalid"), "there is no signal");
            expect(bench.operate.text("crest_factor_output") == QLatin1String("---"),
                   "there is no crest factor");
            expect(bench.operate.isEnabled("calc_fft_button"), "the button is back");
            expect(!bench.isActionEnabled("actionSave_Waveform"), "there is nothing to save");
        }
    }
    expect(bench.calculate() == good, "the signal is the same afterwards");
}

// The calculation has its thread, which stood idle; its helpers have none.
void calculateWithoutHelpers(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", 4); // 262144, which helpers would share
    expect(WorkerThreads::ofProcess().start([] {}), "there is a thread");
    WorkerThreads::ofProcess().waitForDone();
    QString alone;
    {
        const LoweredLimit limit(
            bench.kind == Shortness::Threads ? RLIMIT_NPROC : RLIMIT_AS,
            bench.kind == Shortness::Threads ? 0 : addressSpaceInUse() + LargeStacks::size / 2);
        expect(threadIsRefused(), "there is no further thread");
        alone = bench.calculate();
        bench.answer("actionSave_Waveform", "alone.i");
    }
    expect(bench.calculate() == alone, "the crest factor is the same");
    bench.answer("actionSave_Waveform", "helped.i");
    expect(bench.content("alone.i").count('\n') == 262144, "all samples are there");
    expect(bench.content("alone.i") == bench.content("helped.i"), "the samples are the same");
    expect(bench.content("alone.q") == bench.content("helped.q"), "the samples are the same");
}

// Without the moment of writing, which the header of the waveform tells.
QByteArray timeless(QByteArray content)
{
    return content.remove(0, qMax(0, content.indexOf("{LEVEL OFFS")));
}

void saveFilesInTheShortage(const LimitedBench& bench)
{
    struct Form
    {
        const char* action;
        QStringList endings;
    };
    const QVector<Form> forms = {{"actionSave_Waveform", {".i", ".q"}},
                                 {"actionSave_Waveform", {".i.wav", ".q.wav"}},
                                 {"actionSave_Waveform", {".wv"}},
                                 {"actionSave_Cfg_File", {".cfg"}}};
    bench.operate.pick("fft_length_input", 4);
    bench.calculate();
    for (const Form& form : forms) {
        bench.answer(form.action, "before" + form.endings.first());
        const Shortage shortage(bench.kind);
        bench.answer(form.action, "short" + form.endings.first());
        expect(QApplication::activeModalWidget() == nullptr, "nothing is said");
    }
    for (const Form& form : forms) {
        for (const QString& ending : form.endings) {
            expect(bench.content("before" + ending).size() > 1000, "the file is there");
            expect(timeless(bench.content("short" + ending)) ==
                       timeless(bench.content("before" + ending)),
                   "the file is whole");
        }
    }
}

void closeInTheShortage(const LimitedBench& bench)
{
    bench.operate.type("seed_input", "42");
    bench.lasting = std::make_unique<Shortage>(bench.kind);
    bench.pressCalculate();
    bench.operate.click("preset_button");
}

LoadTraceDialog* openTrace(const LimitedBench& bench)
{
    bench.writeTrace("trace.txt");
    bench.answer("actionLoad_SAN_Mag", "trace.txt");
    const auto dialogs = bench.window.findChildren<LoadTraceDialog*>();
    expect(!dialogs.isEmpty(), "the dialog is open");
    return dialogs.last();
}

void loadTheWholeTrace(const LimitedBench& bench)
{
    LoadTraceDialog* dialog = openTrace(bench);
    const WindowDriver inDialog(*dialog);
    await("the trace", [&inDialog] { return inDialog.isEnabled("load_direct_button"); });
    await("its fit", [&inDialog] { return inDialog.isEnabled("load_poly_button"); });
    inDialog.click("load_poly_button");
}

void loadATraceInTheShortage(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", 12);
    bench.calculate();
    {
        const Shortage shortage(bench.kind);
        const WindowDriver inDialog(*openTrace(bench));
        QCoreApplication::processEvents();
        expect(!inDialog.isEnabled("load_direct_button"), "there is no trace to load");
        expect(!inDialog.isEnabled("load_poly_button"), "there is no fit to load");
        expect(inDialog.text("length") == QLatin1String("---"), "nothing is shown of the trace");
        inDialog.click("cancel_button");
    }
    loadTheWholeTrace(bench);
    await("the correction", [&bench] { return bench.operate.isEnabled("compensate_checkbox"); });
}

// The trace is there, and then there is no thread for its fit.
void fitATraceInTheShortage(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", 12);
    bench.calculate();
    {
        std::unique_ptr<Shortage> shortage;
        LoadTraceDialog* dialog = openTrace(bench);
        QObject::connect(dialog, &LoadTraceDialog::directLoaded, dialog, [&] {
            WorkerThreads::ofProcess().waitForDone(); // the thread of the trace stands idle then
            shortage = std::make_unique<Shortage>(bench.kind);
        });
        const WindowDriver inDialog(*dialog);
        await("the shortage", [&shortage] { return shortage != nullptr; });
        QCoreApplication::processEvents();
        expect(inDialog.isEnabled("load_direct_button"), "the trace can be loaded");
        expect(!inDialog.isEnabled("load_poly_button"), "there is no fit to load");
        inDialog.click("load_direct_button");
    }
    await("the correction", [&bench] { return bench.operate.isEnabled("compensate_checkbox"); });
    bench.calculate();
    loadTheWholeTrace(bench);
}

void sweepInTheShortage(const LimitedBench& bench)
{
    constexpr int seeds = 60;
    bench.operate.pick("fft_length_input", 12);
    const Sweep sweep(bench);
    {
        const Shortage shortage(bench.kind);
        sweep.start(seeds);
        expect(sweep.end().join("").isEmpty(), "no seed has a result");
    }
    sweep.start(seeds);
    expect(!sweep.end().contains(QString()), "every seed has a result");
}

// The click begins the threads of the first seeds only.
void runShortInTheMiddleOfASweep(const LimitedBench& bench)
{
    constexpr int seeds = 120;
    constexpr int begun = 50;
    bench.operate.pick("fft_length_input", 12);
    const Sweep sweep(bench);
    QStringList rows;
    {
        sweep.start(seeds);
        const ThreadLimit limit;
        rows = sweep.end();
    }
    expect(!rows.mid(0, begun).contains(QString()), "the seeds that had begun have results");
    expect(rows.mid(begun).join("").isEmpty(), "the others have none");
    sweep.start(seeds);
    const QStringList all = sweep.end();
    expect(!all.contains(QString()), "every seed has a result");
    expect(all.mid(0, begun) == rows.mid(0, begun), "the results are the same");
}

} // namespace

const QVector<LimitedScenario> jobScenarios = {
    {"calculation", calculateInTheShortage, false},
    {"helpers", calculateWithoutHelpers, false},
    {"files", saveFilesInTheShortage, false},
    {"trace", loadATraceInTheShortage, false},
    {"fit", fitATraceInTheShortage, false},
    {"sweep", sweepInTheShortage, false},
    {"sweep middle", runShortInTheMiddleOfASweep, false},
    {"close", closeInTheShortage, false},
};
