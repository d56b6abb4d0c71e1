// Jobs that run out of memory in their midst. The limits leave the toolkit what it needs, except
// where files are written, which needs so little that only the last of the memory stops it.
#include "files/waveform_output.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "instruments/instrument_link.h"
#include "reliability/limited_bench.h"
#include "setup/config_file.h"

namespace {

constexpr rlim_t mebibyte = 1 << 20;
constexpr int greatestLength = 0; // row; each of a signal's four vectors takes 32 MiB there

// One step of the limit after the other fails at another place of the calculation, until there is
// enough for all of it.
void calculateAtTheGreatestLength(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", greatestLength);
    const QString good = bench.calculate();
    int failures = 0;
    for (rlim_t left = 24 * mebibyte;; left += 32 * mebibyte) {
        waitForBackgroundJobs(); // what the one before held is free
        const LastMemory reserve(0, 8 * mebibyte);
        const MemoryLimit limit(left);
        bench.pressCalculate();
        if (bench.state() == QLatin1String("Data valid")) {
            break;
        }
        ++failures;
        expect(bench.state() == QLatin1String("Data invalid"), "there is no signal");
        expect(bench.operate.text("crest_factor_output") == QLatin1String("---"),
               "there is no crest factor");
        expect(bench.operate.isEnabled("calc_fft_button"), "the button is back");
    }
    expect(failures >= 4, "no vector of the signal fits into the first limits");
    expect(bench.operate.text("crest_factor_output") == good, "the signal is the same");
    expect(bench.calculate() == good, "the signal is the same afterwards");
}

// Opens the dialog and waits until its jobs have ended.
void openTrace(const LimitedBench& bench)
{
    bench.answer("actionLoad_SAN_Mag", "trace.txt");
    for (int job = 0; job < 2; ++job) {
        expect(backgroundJobsEnd(60000), "the jobs end");
    }
}

void loadATraceAtTheGreatestLength(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", greatestLength);
    bench.calculate();
    waitForBackgroundJobs();
    bench.writeTrace("trace.txt");
    struct Step
    {
        rlim_t left;
        bool isRead;
        bool isFitted;
    };
    for (const Step& step : {Step{24 * mebibyte, false, false}, Step{56 * mebibyte, true, false},
                             Step{1024 * mebibyte, true, true}}) {
        {
            const LastMemory reserve(0, 8 * mebibyte);
            const MemoryLimit limit(step.left);
            openTrace(bench);
        }
        auto* dialog = bench.window.findChild<LoadTraceDialog*>();
        expect(dialog != nullptr, "the dialog is open");
        const WindowDriver inDialog(*dialog);
        expect(inDialog.isEnabled("load_direct_button") == step.isRead, "the trace's button");
        expect(inDialog.isEnabled("load_poly_button") == step.isFitted, "the fit's button");
        inDialog.click("cancel_button");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

// Three seeds at a time need more than there is. Those that get it all the same are right.
void sweepAtTheGreatestLength(const LimitedBench& bench)
{
    constexpr int seeds = 6;
    bench.operate.pick("fft_length_input", greatestLength);
    const Sweep sweep(bench);
    sweep.start(seeds);
    const QStringList good = sweep.end();
    expect(!good.contains(QString()), "every seed has a result");
    for (const rlim_t left : {64 * mebibyte, 320 * mebibyte}) {
        const LastMemory reserve(0, 8 * mebibyte);
        const MemoryLimit limit(left);
        sweep.start(seeds);
        const QStringList rows = sweep.end();
        for (int row = 0; row < seeds; ++row) {
            expect(rows.at(row).isEmpty() || rows.at(row) == good.at(row), "the result is right");
        }
        expect(left > 64 * mebibyte || rows.join("").isEmpty(), "no signal fits into so little");
    }
    sweep.start(seeds);
    expect(sweep.end() == good, "every seed has its result afterwards");
}

struct Form
{
    std::function<void()> save;
    QStringList names;
};

QVector<Form> formsIn(const LimitedBench& bench)
{
    static const SignalData signal = [] {
        SignalData made(65536);
        for (int k = 0; k < made.length; ++k) {
            made.iSamples[k] = k % 3 - 1.0;
            made.qSamples[k] = k % 5 - 2.0;
        }
        return made;
    }();
    static const MeasurementSetup setup = [] {
        MeasurementSetup made;
        for (int row = 0; row < 2000; ++row) {
            made.notches->insert(row, Notch());
        }
        return made;
    }();
    const auto waveform = [](const QString& path) {
        return [path] { saveWaveform(path, signal, 1e8); };
    };
    return {{waveform(bench.path("s.i")), {"s.i", "s.q"}},
            {waveform(bench.path("s.i.wav")), {"s.i.wav", "s.q.wav"}},
            {waveform(bench.path("s.wv")), {"s.wv"}},
            {[path = bench.path("s.cfg")] { saveConfig(setup, path); }, {"s.cfg"}}};
}

void put(const QString& path, const QByteArray& content)
{
    QFile file(path);
    expect(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
           "the former file is written");
}

// Whether the files are the new ones; they are all the former or all the new ones.
bool areNew(const LimitedBench& bench, const Form& form, const QVector<int>& newSizes)
{
    int newOnes = 0;
    for (int file = 0; file < form.names.size(); ++file) {
        const QByteArray content = bench.content(form.names.at(file));
        const bool isNew = content.size() == newSizes.at(file);
        expect(isNew || content == "former", "the file is whole");
        newOnes += isNew ? 1 : 0;
    }
    expect(newOnes == 0 || newOnes == form.names.size(), "the files belong together");
    expect(QDir(bench.folder.path()).entryList(QDir::Files).size() == form.names.size(),
           "nothing else is left");
    return newOnes > 0;
}

void saveFilesInTheLastMemory(const LimitedBench& bench)
{
    for (const Form& form : formsIn(bench)) {
        form.save();
        QVector<int> sizes;
        for (const QString& name : form.names) {
            sizes.append(bench.content(name).size());
        }
        int saved = 0;
        int failed = 0;
        for (std::size_t left = 0; left < 2 * mebibyte; left += left < 65536 ? 2048 : 65536) {
            for (const QString& name : form.names) {
                put(bench.path(name), "former");
            }
            {
                const LastMemory last(left, LastMemory::smallestOfAll);
                form.save();
            }
            areNew(bench, form, sizes) ? ++saved : ++failed;
        }
        expect(saved > 0, "it is saved when there is enough");
        expect(failed > 0, "it isn't when there is too little");
        for (const QString& name : form.names) {
            QFile::remove(bench.path(name));
        }
    }
}

// A thread stands idle, so that nothing but memory is short. Who asks is told so, or answered.
void talkInTheLastMemory(const LimitedBench&)
{
    const auto link = std::make_shared<InstrumentLink>();
    int refused = 0;
    int held = 0;
    for (std::size_t left = 0; left < 4096; left += 64) {
        std::atomic<int> ends{0};
        bool isRefused = false;
        {
            expect(WorkerThreads::ofProcess().start([] {}), "there is a thread");
            WorkerThreads::ofProcess().waitForDone();
            const LastMemory last(left, LastMemory::smallestOfAll);
            try {
                link->converse([] { throw std::bad_alloc(); }, [&ends] { ++ends; });
            } catch (const std::bad_alloc&) {
                isRefused = true;
            }
            WorkerThreads::ofProcess().waitForDone();
        }
        expect(ends == (isRefused ? 0 : 1), "the conversation's end is told");
        expect(link->pendingConversations() == 0, "nothing is pending");
        expect(!link->isInUse(), "the link is free again");
        refused += isRefused ? 1 : 0;
        held += ends;
    }
    expect(refused > 0 && held > 0, "memory is short for some and not for others");
}

// Pressed where the window has hardly the memory to show it.
void pressCalculateInTheLastMemory(const LimitedBench& bench)
{
    bench.operate.pick("fft_length_input", 12);
    const QString good = bench.calculate();
    for (std::size_t left = 0; left < mebibyte; left += left < 65536 ? 1024 : 65536) {
        {
            const LastMemory last(left, LastMemory::smallestOfAll);
            try {
                bench.window.on_calc_fft_button_clicked();
            } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): what is seen counts
            }
            WorkerThreads::ofProcess().waitForDone();
        }
        QCoreApplication::processEvents();
        bench.window.notifyPropertyChanged(); // as any other input does
        await("the end of the calculation", [&bench] { return !bench.isCalculating(); });
        expect(bench.operate.isEnabled("calc_fft_button"), "the button is back");
    }
    expect(bench.calculate() == good, "the signal is the same afterwards");
}

} // namespace

const QVector<LimitedScenario> memoryScenarios = {
    {"great calculation", calculateAtTheGreatestLength, false},
    {"great trace", loadATraceAtTheGreatestLength, false},
    {"great sweep", sweepAtTheGreatestLength, false},
    {"last talk", talkInTheLastMemory, false},
    {"last press", pressCalculateInTheLastMemory, false},
    {"last memory", saveFilesInTheLastMemory, false},
};
