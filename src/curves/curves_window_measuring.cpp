// Measuring a curve from the window.
#include "curves/bench_holders.h"
#include "curves/curves_window.h"
#include "curves/draft_folder.h"
#include "curves/measure_dialog.h"
#include "curves/running_curve.h"

#include "ui_curves_window.h"

#include <QTime>

void CurvesWindow::askForCurve()
{
    if (running != nullptr) {
        return;
    }
    MeasureDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted) {
        dismissMessages(); // of what was before
        ui->result_view->setFocus();
        measure(dialog.words());
    }
}

void CurvesWindow::measure(const QStringList& words)
{
    running = std::make_unique<RunningCurve>();
    runningId = 0;
    connect(running.get(), &RunningCurve::changed, this, &CurvesWindow::takeRunning);
    connect(running.get(), &RunningCurve::warned, this, &CurvesWindow::tell);
    connect(running.get(), &RunningCurve::ended, this, &CurvesWindow::endRunning);
    running->start(words);
    showRunning();
}

void CurvesWindow::showRunning()
{
    const bool isRunning = running != nullptr;
    ui->running_bar->setVisible(isRunning);
    ui->action_measure->setEnabled(!isRunning);
    ui->measure_button->setEnabled(!isRunning);
    ui->action_stop->setEnabled(isRunning);
    if (isRunning) {
        ui->running_text->setText(running->progressText());
        ui->running_share->setValue(running->percent());
    }
}

// The row comes with the first news.
void CurvesWindow::takeRunning()
{
    ShownResult shown;
    if (const ShownResult* former = model.find(runningId)) {
        shown = *former;
    } else {
        const ResultContext& context = running->measuring().context;
        shown.name = "curve of " + QTime::currentTime().toString(QStringLiteral("hh:mm:ss"));
        shown.limit = context.limit;
        shown.theoryName = context.theoryName;
        shown.theory = context.theory;
    }
    shown.result = running->result();
    shown.state = running->isRunning() ? ShownResult::State::Running : ShownResult::State::Unsaved;
    if (shown.id != 0) {
        model.change(shown);
    } else {
        runningId = shown.id = model.add(shown);
        choose(runningId);
    }
    keepRunning(shown);
    showRunning();
}

// Not at every news: writing a long result takes its time.
void CurvesWindow::keepRunning(const ShownResult& shown)
{
    constexpr int interval = 1000; // ms
    const bool isOver = shown.state == ShownResult::State::Unsaved;
    if (shown.result.points.isEmpty()) {
        return;
    }
    if (isOver || !sinceDraft.isValid() || sinceDraft.elapsed() > interval) {
        sinceDraft.start();
        drafts->keep(shown.id, shown.result);
    }
}

// What ended before its first reading leaves no row.
void CurvesWindow::endRunning(const QString& failure)
{
    const ShownResult* shown = model.find(runningId);
    const bool hasPoints = shown != nullptr && !shown->result.points.isEmpty();
    if (!failure.isEmpty()) {
        tell("The measurement ended: " + failure + '.' +
             (hasPoints ? QStringLiteral(" What was measured is kept.") : QString()));
    }
    if (!hasPoints) {
        model.remove(runningId);
    }
    running.release()->deleteLater(); // it is telling this
    showRunning();
}
