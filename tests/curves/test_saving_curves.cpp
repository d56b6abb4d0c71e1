// Results into files, and those that nobody saved.
#include "curves/curves_window_test.h"
#include "curves/draft_folder.h"
#include "curves/report.h"
#include "curves/result_file.h"
#include "kit/background_jobs.h"
#include "kit/file_content.h"

#include <QStandardPaths>

namespace {

QDir draftsRoot()
{
    return {QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/unsaved"};
}

// As a program leaves it that was killed.
QString leaveDraft(const NprResult& result)
{
    draftsRoot().mkpath("gone");
    return writeResult(draftsRoot().filePath("gone/1.json"), result);
}

int draftCount()
{
    int count = 0;
    for (const QString& folder : draftsRoot().entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        count += QDir(draftsRoot().filePath(folder)).entryList({"*.json"}).size();
    }
    return count;
}

// So many readings that nobody waits for their end.
QStringList longer(QStringList words)
{
    words.last() = "-30:-10:0.01";
    return words << "--average"
                 << "20";
}

const QStringList quick = {"curve",     "default",      "--set",      "NPR/FFT Len=4096",
                           "--notches", "2,1e6,-100,0", "--simulate", "rapp,saturation=0",
                           "--levels",  "-30:-10:5"};

} // namespace

class TestSavingCurves : public CurvesWindowTest
{
    Q_OBJECT

private slots:
    void init()
    {
        draftsRoot().removeRecursively();
        openWindow();
    }
    void cleanup() { closeWindow(); }

    void everyFormIsWritten();
    void theMenuSavesTheChosenResult();
    void aSavedPictureOfAnUnsavedResultIsToldAsSuch();
    void aFormOfOneResultTakesNoTwo();
    void aNameOfNoFormIsRefused();
    void aFolderThatIsMissingIsAMessage();
    void theReportNamesPeaksRangesSettingsAndMarks();
    void theReportOfRecordingsTellsLevelsOfFullScale();
    void aMeasuredCurveIsKeptUntilItIsSaved();
    void theEndAsksForWhatIsNotSaved();
    void theEndSavesWhatIsMeasuredWhileItAsks();
    void aResultThatGrowsIsToldToBeSavedAgain();
    void aMeasurementThatEndsWithoutAPointIsNotSaved();
    void whatAKilledProgramLeftIsOffered();
    void whatIsDeclinedIsDeleted();
    void whatALivingProgramKeepsIsNotOffered();
    void whatIsForgottenWhileItIsWrittenStaysForgotten();

private:
    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    void measure();
    void measureWithoutEnd();
    int pointCount() const { return window->results().results().value(0).result.points.size(); }
    void waitForMorePoints() const;
    void answerNextQuestion(QMessageBox::StandardButton button) const;
};

void TestSavingCurves::measure()
{
    window->measure(quick);
    QTRY_VERIFY_WITH_TIMEOUT(window->results().rowCount() == 1 &&
                                 window->results().results().constFirst().state ==
                                     ShownResult::State::Unsaved,
                             60000);
    QTRY_COMPARE(draftCount(), 1);
}

void TestSavingCurves::measureWithoutEnd()
{
    window->measure(longer(quick));
    QTRY_VERIFY_WITH_TIMEOUT(pointCount() > 2, 60000);
}

void TestSavingCurves::waitForMorePoints() const
{
    const int before = pointCount();
    QTRY_VERIFY_WITH_TIMEOUT(pointCount() > before, 60000);
}

void TestSavingCurves::answerNextQuestion(QMessageBox::StandardButton button) const
{
    operate->onNext<QMessageBox>(
        [button](QMessageBox* box) { QTest::mouseClick(box->button(button), Qt::LeftButton); });
}

void TestSavingCurves::everyFormIsWritten()
{
    openResult("a.json", roofs(2));
    const QVector<ShownResult> results = window->results().results();
    for (const char* name : {"b.json", "b.csv", "b.png", "b.svg", "b.pdf"}) {
        QVERIFY2(window->save(results, path(name)), name);
    }
    QCOMPARE(readResultFile(path("b.json")).result.points.size(), 82);
    QCOMPARE(contentOf(path("b.csv")).count('\n'), 83);
    QCOMPARE(QImage(path("b.png")).size(), QSize(1600, 1000));
    QVERIFY(contentOf(path("b.svg")).contains("<svg"));
    const QByteArray report = contentOf(path("b.pdf"));
    QVERIFY(report.startsWith("%PDF"));
    QCOMPARE(report.count("/Type /Page\n"), 1);
}

void TestSavingCurves::theMenuSavesTheChosenResult()
{
    openResult("a.json", roofs(2));
    operate->answerFileDialog(path("picture.png"));
    window->tell("What was before.");
    operate->trigger("action_save");
    QVERIFY(!QImage(path("picture.png")).isNull());
    QCOMPARE(operate->text("message_text"), "Saved " + path("picture.png") + '.');
}

void TestSavingCurves::aSavedPictureOfAnUnsavedResultIsToldAsSuch()
{
    measure();
    operate->answerFileDialog(path("early.png"));
    operate->trigger("action_save");
    QVERIFY(operate->text("message_text").contains("The result itself is not saved yet"));
    operate->answerFileDialog(path("early.json"));
    operate->trigger("action_save");
    QCOMPARE(operate->text("message_text"), "Saved " + path("early.json") + '.');
}

void TestSavingCurves::aFormOfOneResultTakesNoTwo()
{
    openResult("a.json", roofs(1));
    openResult("b.json", roofs(1));
    QVERIFY(!window->save(window->results().results(), path("both.csv")));
    QVERIFY(operate->text("message_text").contains("choose one"));
    QVERIFY(window->save(window->results().results(), path("both.pdf")));
}

void TestSavingCurves::aNameOfNoFormIsRefused()
{
    openResult("a.json", roofs(1));
    QVERIFY(!window->save(window->results().results(), path("a.xlsx")));
    QVERIFY(operate->text("message_text").contains(".csv"));
    QVERIFY(!QFile::exists(path("a.xlsx")));
}

void TestSavingCurves::aFolderThatIsMissingIsAMessage()
{
    openResult("a.json", roofs(1));
    QVERIFY(!window->save(window->results().results(), path("missing/a.csv")));
    QVERIFY(operate->text("message_text").contains("missing/a.csv"));
}

void TestSavingCurves::theReportNamesPeaksRangesSettingsAndMarks()
{
    ShownResult shown;
    shown.name = "cold & old";
    shown.result = roofs(2);
    shown.result.points[0].addMark(PointMark::overload);
    const QString html = reportHtml({shown});
    const QString minus = QChar(0x2212);
    QVERIFY(
        html.contains("<td>cold &amp; old</td><td>2</td><td>52.0</td><td>" + minus + "20.00 dBm<"));
    QVERIFY(html.contains("22.0 dB over 41 dB (" + minus + "31.0 to " + minus + "9.0 dBm)"));
    QVERIFY(html.contains("131072 points at 100 MHz"));
    QVERIFY(html.contains("overload (1 points)"));
}

void TestSavingCurves::theReportOfRecordingsTellsLevelsOfFullScale()
{
    ShownResult shown;
    shown.result = roofs(2);
    shown.result.levelUnit = LevelUnit::Dbfs;
    const QString html = reportHtml({shown});
    QVERIFY(html.contains("20.00 dBFS<"));
    QVERIFY(html.contains("9.0 dBFS)"));
    QVERIFY(!html.contains("dBm"));
}

void TestSavingCurves::aMeasuredCurveIsKeptUntilItIsSaved()
{
    measure();
    QVERIFY(window->save(window->results().results(), path("saved.json")));
    QCOMPARE(window->results().results().constFirst().state, ShownResult::State::InFile);
    QTRY_COMPARE(draftCount(), 0);
}

void TestSavingCurves::theEndAsksForWhatIsNotSaved()
{
    measure();
    answerNextQuestion(QMessageBox::Cancel);
    QVERIFY(!window->close());
    QCOMPARE(draftCount(), 1);
    answerNextQuestion(QMessageBox::Discard);
    QVERIFY(window->close());
    QCOMPARE(draftCount(), 0);
}

void TestSavingCurves::theEndSavesWhatIsMeasuredWhileItAsks()
{
    measureWithoutEnd();
    operate->onNext<QMessageBox>([this](QMessageBox* box) {
        waitForMorePoints();
        QTest::mouseClick(box->button(QMessageBox::Save), Qt::LeftButton);
    });
    int measured = 0;
    operate->onNext<QFileDialog>([this, &measured](QFileDialog* dialog) {
        waitForMorePoints();
        measured = pointCount();
        auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        edit->setText(path("asked.json"));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    QVERIFY(window->close());
    QVERIFY(measured > 0);
    QVERIFY(readResultFile(path("asked.json")).result.points.size() >= measured);
}

void TestSavingCurves::aResultThatGrowsIsToldToBeSavedAgain()
{
    measureWithoutEnd();
    operate->answerFileDialog(path("growing.json"));
    operate->trigger("action_save");
    QCOMPARE(operate->text("message_text"),
             "Saved " + path("growing.json") +
                 ". It is still being measured: save it again at its end.");
}

void TestSavingCurves::aMeasurementThatEndsWithoutAPointIsNotSaved()
{
    QStringList words = quick;
    words << "--settle"
          << "3600"; // s
    window->measure(words);
    QTRY_COMPARE_WITH_TIMEOUT(window->results().rowCount(), 1, 30000);
    operate->onNext<QFileDialog>([this](QFileDialog* dialog) {
        operate->find<QAction>("action_stop")->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(window->results().rowCount(), 0, 30000);
        auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        edit->setText(path("none.json"));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    operate->trigger("action_save");
    QCOMPARE(operate->text("message_text"),
             QString("There is nothing to save: the measurement ended before its first point."));
    QVERIFY(!QFile::exists(path("none.json")));
}

void TestSavingCurves::whatAKilledProgramLeftIsOffered()
{
    leaveDraft(roofs(2));
    answerNextQuestion(QMessageBox::Yes);
    window->offerDrafts();
    QTRY_COMPARE(window->results().rowCount(), 1);
    QCOMPARE(window->results().results().constFirst().state, ShownResult::State::Unsaved);
    QCOMPARE(draftCount(), 1); // in this window's folder now
    closeWindow();
    openWindow();
    answerNextQuestion(QMessageBox::Yes);
    window->offerDrafts();
    QTRY_COMPARE(window->results().rowCount(), 1);
    QVERIFY(window->save(window->results().results(), path("late.json")));
    QCOMPARE(draftCount(), 0);
}

void TestSavingCurves::whatIsDeclinedIsDeleted()
{
    leaveDraft(roofs(2));
    answerNextQuestion(QMessageBox::No);
    window->offerDrafts();
    QCOMPARE(draftCount(), 0);
    window->offerDrafts(); // asks nothing any more
    QCOMPARE(window->results().rowCount(), 0);
}

void TestSavingCurves::whatALivingProgramKeepsIsNotOffered()
{
    DraftFolder other;
    other.keep(1, roofs(1));
    QTRY_COMPARE(draftCount(), 1);
    QCOMPARE(DraftFolder::leftOver(), QStringList());
    other.forget(1);
    QCOMPARE(draftCount(), 0);
}

void TestSavingCurves::whatIsForgottenWhileItIsWrittenStaysForgotten()
{
    auto drafts = std::make_unique<DraftFolder>();
    drafts->keep(1, roofs(1)); // its file keeps the folder
    QTRY_COMPARE(draftCount(), 1);
    waitForBackgroundJobs();
    drafts->keep(2, roofs(100));
    drafts->forget(2);
    drafts.reset(); // as the program does at once after "Discard"
    waitForBackgroundJobs();
    QCOMPARE(draftCount(), 1);
}

QTEST_MAIN(TestSavingCurves)
#include "test_saving_curves.moc"
