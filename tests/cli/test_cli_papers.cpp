// Man page and completion keep up with what the program itself tells.
#include "cli/cli_process.h"
#include "kit/file_content.h"
#include "structure/source_files.h"

#include <QtTest>

namespace {

const QString manPage = QStringLiteral(NOTCHBENCH_SOURCE_DIR "/packaging/notchbench-cli.1");

} // namespace

class TestCliPapers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theManPageTellsEveryCommandAndOption();
    void completionOffersCommands();
    void completionOffersOptionsOfTheCommand();
    void completionOffersConfigurationsAndFormats();
    void everyFormatIsOfferedAndInTheManPage();

private:
    QStringList options(const QString& command)
    {
        return allMatches(cli.run({command, "--help"}).out, "^  (--[a-z]+)");
    }
    QStringList complete(const QStringList& words);

    CliProcess cli;
    QStringList commands;
};

void TestCliPapers::initTestCase()
{
    const QString help = cli.run({"--help"}).out;
    commands = allMatches(help.section("Commands:\n", 1).section("\n\n", 0, 0), "^  ([a-z]+) ");
    QVERIFY(commands.size() >= 3);
}

// What bash offers for the last word.
QStringList TestCliPapers::complete(const QStringList& words)
{
    QString list;
    for (const QString& word : words) {
        list += " '" + word + "'";
    }
    const QString script =
        QString("source " NOTCHBENCH_SOURCE_DIR "/packaging/notchbench-cli.bash; "
                "COMP_WORDS=('%1'%2); COMP_CWORD=%3; _notchbench_cli; "
                "printf '%s\\n' \"${COMPREPLY[@]}\"")
            .arg(NOTCHBENCH_CLI, list)
            .arg(words.size());
    cli.process.start("bash", {"-c", script});
    cli.process.waitForFinished(20000);
    return QString(cli.process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

void TestCliPapers::theManPageTellsEveryCommandAndOption()
{
    const QString page = textOfFile(manPage).replace("\\-", "-");
    for (const QString& command : qAsConst(commands)) {
        QVERIFY2(page.contains(".B " + command + '\n'), qPrintable(command));
        const QStringList itsOptions = options(command);
        QVERIFY(!itsOptions.isEmpty());
        for (const QString& option : itsOptions) {
            QVERIFY2(QRegularExpression(option + "\\b").match(page).hasMatch(), qPrintable(option));
        }
    }
}

void TestCliPapers::completionOffersCommands()
{
    QCOMPARE(complete({"si"}), QStringList{"signal"});
    const QStringList all = complete({""});
    for (const QString& command : qAsConst(commands)) {
        QVERIFY2(all.contains(command), qPrintable(command));
    }
}

void TestCliPapers::completionOffersOptionsOfTheCommand()
{
    for (const QString& command : qAsConst(commands)) {
        QCOMPARE(complete({command, "default", "--"}), options(command));
    }
    QCOMPARE(complete({"trim", "default", "--ta"}), QStringList{"--target"});
}

void TestCliPapers::completionOffersConfigurationsAndFormats()
{
    for (const char* name : {"bench.cfg", "other.txt", "day.json"}) {
        putContent(cli.path(name), "");
    }
    QCOMPARE(complete({"signal", ""}), (QStringList{"bench.cfg", "default"}));
    QCOMPARE(complete({"plot", "day.json", ""}), QStringList{"day.json"});
    QCOMPARE(complete({"signal", "default", "--format", "w"}), (QStringList{"wav", "wv"}));
    QCOMPARE(complete({"analyze", "default", "ot"}), QStringList{"other.txt"});
    QCOMPARE(complete({"analyze", "default", "--type", "ri"}), QStringList{"ri16"});
}

void TestCliPapers::everyFormatIsOfferedAndInTheManPage()
{
    const QString refusal = cli.run({"signal", "default", "--out", "x"}).err;
    const QStringList formats = refusal.section("formats are ", 1).trimmed().split(", ");
    QCOMPARE(complete({"signal", "default", "--format", ""}), formats);
    const QString page = textOfFile(manPage).section(".SS Of signal", 1).section(".SS", 0, 0);
    for (const QString& format : formats) {
        QVERIFY2(page.contains(".B " + format + '\n'), qPrintable(format));
    }
}

QTEST_GUILESS_MAIN(TestCliPapers)
#include "test_cli_papers.moc"
