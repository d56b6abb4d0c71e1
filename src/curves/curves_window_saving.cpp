// Saving results, and asking for those that weren't.
#include "curves/curves_window.h"
#include "curves/draft_folder.h"
#include "curves/running_curve.h"
#include "curves/saved_file.h"

#include "base/background.h"
#include "base/whole_file.h"
#include "curves/result_file.h"
#include "ui_curves_window.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <algorithm>

namespace {

// The ending of the filter that was chosen, where the name has none.
QString withEnding(const QString& name, const QString& filter)
{
    const QString ending = filter.section(QStringLiteral("*."), 1).chopped(1);
    return name.isEmpty() || !QFileInfo(name).suffix().isEmpty() ? name : name + '.' + ending;
}

// A time has colons, which not every disk takes.
QString proposedPath(const ShownResult& result)
{
    return QDir::current().filePath(QString(result.name).replace(QChar(':'), QChar('-')) + ".json");
}

bool isWholeResult(const QString& path)
{
    return path.endsWith(QStringLiteral(".json"), Qt::CaseInsensitive);
}

} // namespace

QVector<int> CurvesWindow::chosenOrShown() const
{
    QVector<int> chosen;
    QVector<int> shown;
    for (const ShownResult& result : model.results()) {
        if (choice.results.contains(result.id)) {
            chosen << result.id;
        }
        if (result.isShown) {
            shown << result.id;
        }
    }
    return chosen.isEmpty() ? shown : chosen;
}

// As they are now: while a question stands, more is measured.
QVector<ShownResult> CurvesWindow::present(const QVector<int>& ids) const
{
    QVector<ShownResult> found;
    for (const int id : ids) {
        if (const ShownResult* result = model.find(id)) {
            found << *result;
        }
    }
    return found;
}

void CurvesWindow::askToSave()
{
    const QVector<int> ids = chosenOrShown();
    if (ids.isEmpty()) {
        return;
    }
    QString filter;
    const QString name = QFileDialog::getSaveFileName(this, QStringLiteral("Save"),
                                                      proposedPath(present(ids).constFirst()),
                                                      savingFilters(), &filter);
    if (name.isEmpty()) {
        return;
    }
    dismissMessages(); // of what was before
    const QVector<ShownResult> results = present(ids);
    if (results.isEmpty()) {
        tell(QStringLiteral("There is nothing to save: the measurement ended before its first "
                            "point."));
    } else {
        saveAndTell(results, withEnding(name, filter));
    }
}

// Whoever has saved a picture, or a result that grows, shall not wonder that the window asks for it
// at its end.
void CurvesWindow::saveAndTell(const QVector<ShownResult>& results, const QString& path)
{
    if (!save(results, path)) {
        return;
    }
    QSet<int> saved;
    for (const ShownResult& result : results) {
        saved.insert(result.id);
    }
    tell("Saved " + path + '.' +
         (unsaved(saved).isEmpty() ? QString()
          : isWholeResult(path)
              ? QStringLiteral(" It is still being measured: save it again at its end.")
              : QStringLiteral(" The result itself is not saved yet: that takes a .json file.")));
}

bool CurvesWindow::save(const QVector<ShownResult>& results, const QString& path)
{
    if (results.size() > 1 && !takesSeveral(path)) {
        tell("Can't save " + QString::number(results.size()) + " results as " + path +
             ": such a file holds one; choose one, or a picture or a report.");
        return false;
    }
    const QByteArray bytes = savedBytes(results, path);
    if (bytes.isEmpty()) {
        tell("Can't save " + path +
             ": choose a name that ends in .json, .csv, .png, .svg or .pdf.");
        return false;
    }
    if (!writeWholeFile(path, bytes)) {
        tell("Can't write " + path + "; is there such a folder, and room on its disk?");
        return false;
    }
    if (isWholeResult(path)) {
        noteSaved(results.constFirst(), path);
    }
    return true;
}

// One that is still being measured isn't whole in the file.
void CurvesWindow::noteSaved(ShownResult result, const QString& path)
{
    if (result.state != ShownResult::State::Running) {
        drafts->forget(result.id);
        result.state = ShownResult::State::InFile;
        result.path = QFileInfo(path).absoluteFilePath();
        result.name = QFileInfo(path).completeBaseName();
        model.change(result);
    }
}

// What is being measured comes last: once it is saved, no question stands while it grows.
QVector<int> CurvesWindow::unsaved(const QSet<int>& among) const
{
    QVector<int> found;
    for (const ShownResult& result : model.results()) {
        if (result.state != ShownResult::State::InFile && among.contains(result.id)) {
            found << result.id;
        }
    }
    if (found.removeOne(runningId)) {
        found << runningId;
    }
    return found;
}

bool CurvesWindow::mayLose(const QVector<int>& ids)
{
    if (ids.isEmpty()) {
        return true;
    }
    QStringList names;
    for (const ShownResult& result : present(ids)) {
        names << result.name;
    }
    const auto answer = QMessageBox::question(
        this, QStringLiteral("Save Results"),
        QStringLiteral("Not saved as a result (.json), which can be opened again: %1.\n\nSave "
                       "before closing?")
            .arg(names.join(", ")),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer != QMessageBox::Save) {
        return answer == QMessageBox::Discard;
    }
    return std::all_of(ids.begin(), ids.end(), [this](int id) { return askAndSave(id); });
}

// What ended without a point meanwhile is gone, and nothing of it is lost.
bool CurvesWindow::askAndSave(int id)
{
    const QVector<ShownResult> asked = present({id});
    if (asked.isEmpty()) {
        return true;
    }
    const QString name = QFileDialog::getSaveFileName(this, "Save " + asked.constFirst().name,
                                                      proposedPath(asked.constFirst()),
                                                      QStringLiteral("Result (*.json)"));
    const QVector<ShownResult> saved = present({id});
    return saved.isEmpty() || (!name.isEmpty() && save(saved, withEnding(name, "(*.json)")));
}

void CurvesWindow::closeChosen()
{
    QSet<int> closing = chosenResults();
    if (running != nullptr) {
        closing.remove(runningId); // it ends by "Stop"
    }
    if (!mayLose(unsaved(closing))) {
        return;
    }
    for (const int id : qAsConst(closing)) {
        drafts->forget(id);
        model.remove(id);
    }
}

void CurvesWindow::closeEvent(QCloseEvent* event)
{
    QSet<int> all;
    for (const ShownResult& result : model.results()) {
        all.insert(result.id);
    }
    if (!mayLose(unsaved(all))) {
        event->ignore();
        return;
    }
    running.reset(); // its campaign ends in the background; the end of the program waits for it
    for (const int id : qAsConst(all)) {
        drafts->forget(id);
    }
    model.removeAll();
    event->accept();
}

void CurvesWindow::offerDrafts()
{
    const QStringList paths = DraftFolder::leftOver();
    if (paths.isEmpty()) {
        return;
    }
    const auto answer = QMessageBox::question(
        this, QStringLiteral("Unsaved Results"),
        QStringLiteral(
            "The program ended before %1 measured results were saved. Open them?\n\n\"No\" "
            "deletes them.")
            .arg(paths.size()),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::No) {
        DraftFolder::decline(paths);
    }
    for (const QString& path : answer == QMessageBox::Yes ? paths : QStringList()) {
        openDraft(path);
    }
}

void CurvesWindow::openDraft(const QString& path)
{
    inBackground(
        this, [path] { return readResultFile(path); },
        [this, path](const ReadResult& read) {
            if (!read.failure.isEmpty()) {
                tell("Can't open " + path + ": " + read.failure + ".");
                return;
            }
            ShownResult shown;
            shown.name = "curve of " + read.result.started.left(16).replace('T', ' ');
            shown.state = ShownResult::State::Unsaved;
            shown.result = read.result;
            const int id = model.add(shown);
            drafts->adopt(id, path);
            choose(id);
        });
}
