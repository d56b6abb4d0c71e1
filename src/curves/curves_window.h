// The window of NPR curves: a list of results, their chart, and what is done with them. Main
// thread.
#pragma once

#include "curves/plot_content.h"
#include "curves/result_model.h"

#include <QElapsedTimer>
#include <QMainWindow>

#include <memory>

class DraftFolder;
class RunningCurve;
struct ReadResult;

namespace Ui {
class CurvesWindow;
} // namespace Ui

class CurvesWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit CurvesWindow(QWidget* parent = nullptr);
    ~CurvesWindow() override;

    // Reads results in the background. One that can't be read is named in a message, and the others
    // open.
    void open(const QStringList& paths);

    // Measures what the words of the command line "curve" ask for. One curve at a time.
    void measure(const QStringList& words);

    // By the ending of the name. False, with a message, when there is no such file afterwards.
    bool save(const QVector<ShownResult>& results, const QString& path);

    // Asks what is to become of results that a program left which couldn't ask.
    void offerDrafts();

    const ResultModel& results() const { return model; }

    // A line in the bar above the chart, below those that stand there.
    void tell(const QString& message);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void connectActions();
    void connectLists();
    void fitScreen();
    void widenColumns();
    void askForFiles();
    void take(const QString& path, const ReadResult& read);
    void askForCurve();
    void askToSave();
    void saveAndTell(const QVector<ShownResult>& results, const QString& path);
    void noteSaved(ShownResult result, const QString& path);
    bool mayLose(const QVector<int>& ids);
    bool askAndSave(int id);
    void openDraft(const QString& path);
    void keepRunning(const ShownResult& shown);
    QVector<int> chosenOrShown() const; // ids, as below
    QVector<int> unsaved(const QSet<int>& among) const;
    QVector<ShownResult> present(const QVector<int>& ids) const;
    void showRunning();
    void takeRunning();
    void endRunning(const QString& failure);
    void closeChosen();
    void dismissMessages();
    void choose(int id);
    QSet<int> chosenResults() const;
    void refresh();
    void refreshNotches(bool hasColours);
    void showAllNotches();
    void showNextNotch();
    void showKeys();

    std::unique_ptr<Ui::CurvesWindow> ui;
    ResultModel model;
    PlotChoice choice;
    DraftFolder* drafts; // owned as a child
    QElapsedTimer sinceDraft;
    std::unique_ptr<RunningCurve> running; // null when nothing is measured
    int runningId = 0;
    bool isListingNotches = false;
    QStringList messages;
};
