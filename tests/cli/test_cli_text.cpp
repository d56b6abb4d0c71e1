// What the program prints: tables, progress, guesses, colours.
#include "cli/console.h"
#include "cli/nearest_name.h"
#include "cli/progress.h"
#include "cli/text_table.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <pty.h>
#include <unistd.h>

namespace {

// The two outputs of a console as files.
class Outputs
{
public:
    Outputs() : console(out, err) {}
    ~Outputs()
    {
        std::fclose(out);
        std::fclose(err);
    }

    static QByteArray textOf(std::FILE* file)
    {
        std::rewind(file);
        char bytes[4096];
        return {bytes, int(std::fread(bytes, 1, sizeof(bytes), file))};
    }

    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    Console console;
};

// A console whose outputs are a terminal, and what arrives there.
class Terminal
{
public:
    Terminal()
    {
        int own = -1;
        if (openpty(&screen, &own, nullptr, nullptr, nullptr) == 0) {
            stream = fdopen(own, "w");
        }
    }
    ~Terminal()
    {
        std::fclose(stream);
        close(screen);
    }

    // All that was written since. It may arrive in pieces, so a mark tells its end.
    QByteArray read() const
    {
        constexpr char mark = '|';
        std::fputc(mark, stream);
        std::fflush(stream);
        QByteArray arrived;
        while (!arrived.endsWith(mark)) {
            char bytes[4096];
            const ssize_t count = ::read(screen, bytes, sizeof(bytes));
            if (count <= 0) {
                return arrived + " and the terminal's end";
            }
            arrived.append(bytes, int(count));
        }
        arrived.chop(1);
        return arrived;
    }

    int screen = -1;
    std::FILE* stream = nullptr;
};

} // namespace

class TestCliText : public QObject
{
    Q_OBJECT

private slots:
    void columnsOfATableAreAligned();
    void progressTellsRateAndTimeLeft();
    void theNearestNameIsTheOneOfFewestChanges();
    void filesGetNeitherColourNorProgress();
    void aTerminalGetsBoth();
    void noColourWhereItIsNotWanted();
    void messagesTakeThePlaceOfTheProgress();
    void aMessageIsOneLineWhateverItNames();
    void aFullDiskIsNoticed();
};

void TestCliText::columnsOfATableAreAligned()
{
    const Outputs outputs;
    TextTable table({Align::Right, Align::Left, Align::Right}, {"notch", "name", "NPR"});
    table.addRow({"1", "low", "54.0"}, Colour::Bad);
    table.addRow({"10", "in the middle", "9.5"});
    table.addRow({"11", "bare"});
    QCOMPARE(table.text(outputs.console), QString("notch  name            NPR\n"
                                                  "    1  low            54.0\n"
                                                  "   10  in the middle   9.5\n"
                                                  "   11  bare\n"));
}

void TestCliText::progressTellsRateAndTimeLeft()
{
    QCOMPARE(progressLine("readings", 0, 61, 500), QString("0 of 61 readings"));
    // 12 in 5 s are 2.4/s; 49 more take 20.4 s.
    QCOMPARE(progressLine("readings", 12, 61, 5000),
             QString("12 of 61 readings, 2.4/s, 0:21 left"));
    // One in 2 s; 99 more take 198 s.
    QCOMPARE(progressLine("rounds", 1, 100, 2000), QString("1 of 100 rounds, 0.5/s, 3:18 left"));
    QCOMPARE(progressLine("rounds", 3, 3, 1000), QString("3 of 3 rounds, 3/s, 0:00 left"));
}

void TestCliText::theNearestNameIsTheOneOfFewestChanges()
{
    const QStringList names{"NPR/Seed", "NPR/SRate", "TCP/IP/Port"};
    QCOMPARE(nearestName("npr/sede", names), QString("NPR/Seed"));
    QCOMPARE(nearestName("TCP/Port", names), QString("TCP/IP/Port"));
    QCOMPARE(nearestName("", names), QString("NPR/Seed"));
    QCOMPARE(didYouMean("x", {}), QString());
    QCOMPARE(didYouMean("NPR/Rate", names), QString("; did you mean NPR/SRate?"));
}

void TestCliText::filesGetNeitherColourNorProgress()
{
    Outputs outputs;
    {
        Progress progress(outputs.console, "levels");
        progress.show(1, 2);
    }
    outputs.console.warn("hot");
    outputs.console.print(outputs.console.painted("bad", Colour::Bad));
    QCOMPARE(Outputs::textOf(outputs.err), QByteArray("notchbench-cli: warning: hot\n"));
    QCOMPARE(Outputs::textOf(outputs.out), QByteArray("bad"));
}

void TestCliText::aTerminalGetsBoth()
{
    qputenv("TERM", "xterm");
    qunsetenv("NO_COLOR");
    const Terminal terminal;
    Console console(terminal.stream, terminal.stream);
    QCOMPARE(console.painted("bad", Colour::Bad), QString("\033[1;31mbad\033[0m"));
    QCOMPARE(console.painted("text", Colour::Plain), QString("text"));
    {
        Progress progress(console, "levels");
        progress.show(0, 2);
        QCOMPARE(terminal.read(), QByteArray("\r\033[K0 of 2 levels"));
    }
    QCOMPARE(terminal.read(), QByteArray("\r\033[K"));
    Progress quiet(console, "levels", true);
    quiet.show(0, 2);
    console.message("end");
    QCOMPARE(terminal.read(), QByteArray("notchbench-cli: end\r\n"));
}

void TestCliText::noColourWhereItIsNotWanted()
{
    const Terminal terminal;
    qputenv("NO_COLOR", "1");
    QCOMPARE(Console(terminal.stream, terminal.stream).painted("bad", Colour::Bad), QString("bad"));
    qunsetenv("NO_COLOR");
    qputenv("TERM", "dumb");
    QCOMPARE(Console(terminal.stream, terminal.stream).painted("bad", Colour::Bad), QString("bad"));
}

void TestCliText::messagesTakeThePlaceOfTheProgress()
{
    const Terminal terminal;
    Console console(terminal.stream, terminal.stream);
    console.setProgress("half");
    console.message("lost");
    QCOMPARE(terminal.read(), QByteArray("\r\033[Khalf\r\033[Knotchbench-cli: lost\r\n"));
}

void TestCliText::aMessageIsOneLineWhateverItNames()
{
    Outputs outputs;
    outputs.console.message("can't read a\nb.cfg");
    outputs.console.warn("\033[2J\tclean\r");
    QCOMPARE(Outputs::textOf(outputs.err), QByteArray("notchbench-cli: can't read a?b.cfg\n"
                                                      "notchbench-cli: warning: ?[2J?clean?\n"));
}

void TestCliText::aFullDiskIsNoticed()
{
    std::FILE* full = std::fopen("/dev/full", "w");
    QVERIFY(full != nullptr);
    Console console(full, stderr);
    QVERIFY(console.isWhole());
    console.print("text");
    QVERIFY(!console.isWhole());
    std::fclose(full);
}

QTEST_APPLESS_MAIN(TestCliText)
#include "test_cli_text.moc"
