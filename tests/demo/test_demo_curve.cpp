// The curve that a newcomer sees first, by the command that draws it, against the formula of Gray
// and Zeoli.
#include "kit/file_content.h"
#include "kit/json_object.h"

#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TestDemoCurve : public QObject
{
    Q_OBJECT

private slots:
    void theConverterHasItsPeakItsRangeAndItsPicture();
    void anotherWordIsRefused();
};

// 12 bits: 62.71 dB, and 25.35 dB above 41 dB. Relative names, as scripts/run gives them.
void TestDemoCurve::theConverterHasItsPeakItsRangeAndItsPicture()
{
    QTemporaryDir folder;
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/demo/curve"), {NOTCHBENCH_CLI, "new"});
    QVERIFY(process.waitForFinished(100000));
    QCOMPARE(process.exitCode(), 0);
    const QByteArray said = process.readAllStandardOutput();
    QVERIFY(said.contains("theory/dB") && said.contains("over 41 dB"));
    QCOMPARE(process.readAllStandardError(), QByteArray());

    const QJsonObject result = jsonOf(contentOf(folder.filePath("new/curve.json")));
    QCOMPARE(result["signal"].toObject()["seeds"].toArray().size(), 16);
    const QJsonObject curve = result["curves"].toArray()[0].toObject();
    QVERIFY(std::abs(curve["peak_npr_db"].toDouble() - 62.71) < 0.5);
    const QJsonObject range = curve["ranges"].toArray()[0].toObject();
    QVERIFY(std::abs(range["range_db"].toDouble() - 25.35) < 0.6);

    QCOMPARE(contentOf(folder.filePath("new/curve.csv")).count('\n'), 39);
    QCOMPARE(QImage(folder.filePath("new/curve.png")).size(), QSize(1600, 1000));
}

// Before anything is installed or built.
void TestDemoCurve::anotherWordIsRefused()
{
    for (const QStringList& words : {QStringList{"--curves"}, QStringList{"--curve", "x"}}) {
        QProcess process;
        process.start(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/scripts/run"), words);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(process.readAllStandardError(), QByteArray("usage: scripts/run [--curve]\n"));
    }
}

QTEST_GUILESS_MAIN(TestDemoCurve)
#include "test_demo_curve.moc"
