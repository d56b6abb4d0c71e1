// Every command of notchbench-cli and notchbench-simulator that manual and README show runs as it
// stands there, page by page in a folder of its own. Instruments are simulated, signals are
// shorter, ports free ones.
#include "cli/cli_process.h"
#include "kit/file_content.h"
#include "structure/source_files.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

const char root[] = NOTCHBENCH_SOURCE_DIR "/";

QString plainText(QString html)
{
    return html.replace("&lt;", "<")
        .replace("&gt;", ">")
        .replace("&#160;", " ")
        .replace("&amp;", "&");
}

// What a page shows as code, a command a text; a line that a backslash continues is one with the
// next.
QStringList codeOf(const QString& document, QString text)
{
    QStringList code;
    text.replace(QRegularExpression("\\\\\n *"), " ");
    if (document.endsWith(".md")) {
        code = allMatches(text, "^    ([^\n]*?)(?: +#[^\n]*)?$");
    } else {
        for (const QString& block : allMatches(text, "<(?:pre|code)>(.*?)</(?:pre|code)>")) {
            code += plainText(block).split('\n');
        }
    }
    return code;
}

// Neither a mere name nor a form with words in capitals to be filled in.
bool isCommand(const QString& line)
{
    static const QRegularExpression cli("^notchbench-cli [a-z]+ [^-]");
    static const QRegularExpression simulator("^(?:notchbench-simulator )?--dut ");
    static const QRegularExpression form("\\b(?:COMMAND|CONFIG)\\b");
    return (line.contains(cli) || line.contains(simulator)) && !line.contains(form);
}

QStringList commandsOf(const QString& document)
{
    QStringList commands;
    for (const QString& line : codeOf(document, textOfFile(root + document))) {
        const QString command = line.simplified();
        if (isCommand(command)) {
            commands.append(command.startsWith("--") ? "notchbench-simulator " + command : command);
        }
    }
    return commands;
}

// The value of an option, where it is there.
void replaceValue(QStringList& words, const QString& option, const QString& value)
{
    const int at = words.indexOf(option);
    if (at >= 0) {
        words[at + 1] = value;
    }
}

// The words behind the program, with what makes them short and free of instruments.
QStringList wordsToRun(const QString& command)
{
    QStringList words = QProcess::splitCommand(command).mid(1);
    if (command.startsWith("notchbench-simulator")) {
        return words;
    }
    replaceValue(words, "--settle", "0");
    replaceValue(words, "--average", "1");
    static const QStringList calculating{"signal", "trim", "measure", "curve", "serve", "analyze"};
    if (!calculating.contains(words.first())) {
        return words;
    }
    words += {"--set", "NPR/FFT Len=16384"};
    if (words.at(1) == "bench.cfg") {
        words += {"--notches", "3,1e6,-100,0"};
    }
    const bool measures = words.first() == "measure" || words.first() == "curve";
    if (measures && !words.contains("--simulate")) {
        words += {"--simulate", "rapp,saturation=0"};
    }
    return words;
}

// Starts a program that runs until it is stopped, and stops it once it has said that it is ready.
bool becomesReady(const QString& program, QStringList words, const QByteArray& sign)
{
    if (!words.contains("--port")) {
        words << "--port" << QString();
    }
    replaceValue(words, "--port", "0");
    QProcess process;
    process.start(program, words);
    QByteArray out;
    const bool ready = QTest::qWaitFor(
        [&] {
            out += process.readAllStandardOutput();
            return out.contains(sign);
        },
        20000);
    process.terminate();
    return process.waitForFinished(20000) && ready;
}

// As a shell does it, a word with a star becomes the names of the files that fit.
QStringList expanded(const QStringList& words, const QString& folder)
{
    QStringList result;
    for (const QString& word : words) {
        const bool isPattern = word.contains('*');
        result += isPattern ? QDir(folder).entryList({word}, QDir::Files) : QStringList(word);
    }
    return result;
}

} // namespace

class TestShownCommands : public QObject
{
    Q_OBJECT

private slots:
    void commandsRun_data();
    void commandsRun();
    void theFirstReadingComesOutAsItsPageSays();
};

void TestShownCommands::commandsRun_data()
{
    QTest::addColumn<QString>("document");
    QTest::newRow("README") << "README.md";
    const QStringList pages =
        QDir(root + QString("docs/manual")).entryList({"*.html"}, QDir::Files, QDir::Name);
    int count = 0;
    for (const QString& page : pages) {
        if (!commandsOf("docs/manual/" + page).isEmpty()) {
            QTest::newRow(page.toLatin1()) << "docs/manual/" + page;
            ++count;
        }
    }
    QVERIFY(count >= 4);
}

void TestShownCommands::commandsRun()
{
    QFETCH(QString, document);
    CliProcess cli;
    putContent(cli.path("bench.cfg"), "[NPR]\nNBW/SRate = 0.8\n");
    const QStringList commands = commandsOf(document);
    if (commands.join(' ').contains("drive*")) { // recordings of the reader's own
        for (const char* name : {"drive1", "drive2", "generator", "device"}) {
            const QString record = "notchbench-cli signal bench.cfg --format sigmf --out ";
            QCOMPARE(cli.run(wordsToRun(record + name)).status, 0);
        }
    }
    for (const QString& command : commands) {
        const QStringList words = expanded(wordsToRun(command), cli.path({}));
        if (command.startsWith("notchbench-simulator")) {
            QVERIFY2(becomesReady(NOTCHBENCH_SIMULATOR, words, "listening on"),
                     qPrintable(command));
        } else if (words.first() == "serve") {
            QVERIFY2(becomesReady(
                         NOTCHBENCH_CLI,
                         QStringList(words).replaceInStrings("bench.cfg", cli.path("bench.cfg")),
                         "serving"),
                     qPrintable(command));
        } else {
            const CliRun run = cli.run(words);
            // 1 says that a limit or a target was missed, by a device that stands in for another.
            QVERIFY2(run.status == 0 || run.status == 1, qPrintable(command + '\n' + run.err));
        }
    }
}

// By the program without a window, in place of window and simulator; scripts/run starts the same
// device as the page.
void TestShownCommands::theFirstReadingComesOutAsItsPageSays()
{
    const QString page = textOfFile(root + QString("docs/manual/first_measurement.html"));
    QVERIFY(page.contains("notchbench-simulator --dut rapp --saturation 10<"));
    QVERIFY(textOfFile(root + QString("scripts/run"))
                .contains("notchbench-simulator --dut rapp --saturation 10 "));
    const QStringList told = allMatches(page, "about\\s+&#8722;([\\d.]+)&#160;dB");
    QCOMPARE(told.size(), 2); // at 0 and at 3 dBm
    CliProcess cli;
    const CliRun run = cli.run({"curve", "default", "--set", "NPR/NBW/SRate=0.8", "--notches",
                                "3,2e6,-100,0", "--notch", "2", "--simulate", "rapp,saturation=10",
                                "--levels", "0:3:3", "--csv", "first.csv"});
    QVERIFY2(run.status == 0, qPrintable(run.err));
    const QStringList lines = textOfFile(cli.path("first.csv")).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    const int column = lines.first().split(',').indexOf("npr_db");
    for (int row = 0; row < told.size(); ++row) {
        const double npr = lines.at(row + 1).split(',').at(column).toDouble();
        // 1966 lines scatter by 0.1 dB, and a reader compares no closer than half a dB.
        QVERIFY2(qAbs(npr - told.at(row).toDouble()) < 0.5, qPrintable(lines.at(row + 1)));
    }
}

QTEST_GUILESS_MAIN(TestShownCommands)
#include "test_shown_commands.moc"
