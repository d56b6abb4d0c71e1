// Each file that notchbench-cli writes, where there is room for a part of it only: the former one
// stays, the program says so, and the next try works.
#include "cli_process.h"
#include "kit/file_content.h"

#include <QtTest>

#include <memory>

namespace {

constexpr int room = 4096; // bytes

} // namespace

class TestCliFullDisk : public QObject
{
    Q_OBJECT

private slots:
    void init() { cli = std::make_unique<CliProcess>(); }
    void formerFileStaysAndTheNextTryWorks_data();
    void formerFileStaysAndTheNextTryWorks();

private:
    std::unique_ptr<CliProcess> cli;
};

void TestCliFullDisk::formerFileStaysAndTheNextTryWorks_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("files");
    const QStringList length{"--set", "NPR/FFT Len=4096"};
    const QStringList curve = QStringList{"curve",    "default",    "--notches",  "1,1e6,-100,0",
                                          "--levels", "-40:0:0.25", "--simulate", "rapp"} +
                              length;
    QTest::newRow("CSV") << curve + QStringList{"--csv", "file.csv"} << QStringList{"file.csv"};
    QTest::newRow("JSON") << curve + QStringList{"--json", "file.json"} << QStringList{"file.json"};
    QTest::newRow("PNG") << curve + QStringList{"--plot", "file.png"} << QStringList{"file.png"};
    QTest::newRow("SVG") << curve + QStringList{"--plot", "file.svg"} << QStringList{"file.svg"};
    QTest::newRow("spectrum") << QStringList{"trim", "default", "--target",
                                             "10",   "--out",   "file.pmc"} +
                                     length
                              << QStringList{"file.pmc"};
    const QList<QPair<QString, QStringList>> formats = {
        {"text", {"file.i", "file.q"}},
        {"wav", {"file.i.wav", "file.q.wav"}},
        {"wv", {"file.wv"}},
        {"npy", {"file.npy"}},
        {"sigmf", {"file.sigmf-data"}},
        {"cf32", {"file.cf32"}},
    };
    for (const auto& format : formats) {
        QTest::newRow(qPrintable(format.first))
            << QStringList{"signal", "default", "--out", "file", "--format", format.first} + length
            << format.second;
    }
}

void TestCliFullDisk::formerFileStaysAndTheNextTryWorks()
{
    QFETCH(QStringList, words);
    QFETCH(QStringList, files);
    for (const QString& name : files) {
        putContent(cli->path(name), "good");
    }
    const QString limited = QString("ulimit -f %1; exec \"$0\" \"$@\"").arg(room / 512);
    const CliRun full = cli->runBy("/bin/sh", QStringList{"-c", limited, NOTCHBENCH_CLI} + words);
    QCOMPARE(full.status, 3);
    QCOMPARE(full.errLines().size(), 1);
    for (const QString& name : files) {
        QCOMPARE(contentOf(cli->path(name)), QByteArray("good"));
    }
    const QDir folder(cli->path("."));
    QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden).size(), files.size());
    const CliRun next = cli->run(words);
    QVERIFY2(next.status == 0 || next.status == 1, qPrintable(next.err));
    for (const QString& name : files) {
        QVERIFY(contentOf(cli->path(name)).size() > room);
    }
}

QTEST_GUILESS_MAIN(TestCliFullDisk)
#include "test_cli_full_disk.moc"
