#include "curves/curves_window.h"

#include "curves/draft_folder.h"
#include "curves/notch_switches.h"
#include "curves/result_file.h"
#include "curves/running_curve.h"

#include "base/background.h"
#include "look/house_style.h"
#include "ui_curves_window.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QIcon>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>

#include <algorithm>

namespace {

const char emptyHint[] =
    "No result yet.\n\nMeasure a curve (Ctrl+M): a simulated device needs no instrument.\nOr open "
    "results (Ctrl+O, or drop their files here).";
const char hiddenHint[] = "Nothing is shown: check a result and a notch on the left.";
const char noReadingHint[] = "Waiting for the first reading.";
const char noRatioHint[] =
    "No reading has an NPR.\n\nDoes the generator play the signal, at the carrier and the levels "
    "that were measured?";

// Where there is no line to see.
QString hintOf(const QVector<ShownResult>& results, const PlotChoice& choice)
{
    const auto isWaiting = [](const ShownResult& result) {
        return result.isShown && result.result.points.isEmpty() &&
               result.state == ShownResult::State::Running;
    };
    const auto hasPoint = [&choice](const ShownResult& result) {
        const QVector<NprPoint>& points = result.result.points;
        return result.isShown &&
               std::any_of(points.begin(), points.end(), [&choice](const NprPoint& point) {
                   return !choice.hiddenNotches.contains(point.notch);
               });
    };
    return results.isEmpty()                                        ? emptyHint
           : std::any_of(results.begin(), results.end(), isWaiting) ? noReadingHint
           : std::any_of(results.begin(), results.end(), hasPoint)  ? noRatioHint
                                                                    : hiddenHint;
}

} // namespace

CurvesWindow::CurvesWindow(QWidget* parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::CurvesWindow>()), drafts(new DraftFolder(this))
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    setWindowIcon(QIcon(QStringLiteral(":/Images/Resources/notchbench-curves.png")));
    ui->result_view->setModel(&model);
    const QVector<int> widths = {130, 122, 110, 42, 110, 55, 110};
    for (int column = 0; column < widths.size(); ++column) {
        ui->result_view->setColumnWidth(column, widths.at(column));
    }
    ui->result_view->setIconSize({12, 12});
    ui->notch_list->setIconSize({12, 12});
    ui->result_view->verticalHeader()->setDefaultSectionSize(22);
    ui->result_view->horizontalHeader()->setHighlightSections(false);
    ui->chart_tabs->setExpanding(false);
    ui->chart_tabs->addTab(QStringLiteral("NPR over level"));
    ui->chart_tabs->addTab(QStringLiteral("NPR over frequency"));
    ui->splitter->setSizes({502, 678});
    ui->splitter->setStretchFactor(1, 1);
    connectActions();
    connectLists();
    showRunning();
    refresh();
    fitScreen();
}

// A scaled desktop may have less room than the form asks for.
void CurvesWindow::fitScreen()
{
    const QSize frame(16, 48); // about that of a window manager
    resize(size().boundedTo(screen()->availableSize() - frame));
}

// The lists tell of their own end, when nothing is left here to show it.
CurvesWindow::~CurvesWindow()
{
    disconnect(ui->result_view->selectionModel(), nullptr, this, nullptr);
    disconnect(&model, nullptr, this, nullptr);
}

void CurvesWindow::connectActions()
{
    const auto on = [this](QAction* action, auto call) {
        connect(action, &QAction::triggered, this, call);
    };
    on(ui->action_measure, [this] { askForCurve(); });
    on(ui->action_stop, [this] { running->stop(); });
    on(ui->action_open, [this] { askForFiles(); });
    on(ui->action_save, [this] { askToSave(); });
    on(ui->action_close, [this] { closeChosen(); });
    on(ui->action_quit, [this] { close(); });
    on(ui->action_over_level, [this] { ui->chart_tabs->setCurrentIndex(0); });
    on(ui->action_over_frequency, [this] { ui->chart_tabs->setCurrentIndex(1); });
    constexpr double step = 0.8;
    on(ui->action_zoom_in, [this] { ui->plot->zoom(step); });
    on(ui->action_zoom_out, [this] { ui->plot->zoom(1.0 / step); });
    on(ui->action_whole, [this] { ui->plot->showWhole(); });
    on(ui->action_all_notches, [this] { showAllNotches(); });
    on(ui->action_next_notch, [this] { showNextNotch(); });
    on(ui->action_keys, [this] { showKeys(); });
    connect(ui->measure_button, &QPushButton::clicked, this, &CurvesWindow::askForCurve);
    connect(ui->stop_button, &QPushButton::clicked, ui->action_stop, &QAction::trigger);
    connect(ui->open_button, &QPushButton::clicked, this, &CurvesWindow::askForFiles);
    connect(ui->save_button, &QPushButton::clicked, this, &CurvesWindow::askToSave);
    connect(ui->message_close, &QPushButton::clicked, this, &CurvesWindow::dismissMessages);
}

void CurvesWindow::connectLists()
{
    connect(ui->result_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CurvesWindow::refresh);
    connect(&model, &QAbstractItemModel::dataChanged, this, &CurvesWindow::refresh);
    connect(&model, &QAbstractItemModel::rowsInserted, this, &CurvesWindow::refresh);
    connect(&model, &QAbstractItemModel::rowsInserted, this, &CurvesWindow::widenColumns);
    connect(&model, &QAbstractItemModel::dataChanged, this, &CurvesWindow::widenColumns);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &CurvesWindow::refresh);
    connect(ui->chart_tabs, &QTabBar::currentChanged, this, [this] {
        ui->plot->showWhole();
        refresh();
    });
    connect(ui->plot, &CurvePlot::picked, this, &CurvesWindow::choose);
    connect(ui->notch_list, &QListWidget::itemChanged, this, [this] {
        if (!isListingNotches) {
            choice.hiddenNotches = hiddenNotches(*ui->notch_list);
            refresh();
        }
    });
}

// Long names are told apart by more than their ends, but what came out is to be seen beside them.
void CurvesWindow::widenColumns()
{
    const QMap<int, int> widestOf = {{ResultModel::Name, 198}, {ResultModel::Device, 200}};
    for (const int column : widestOf.keys()) {
        constexpr int frame = 2;                          // of the current cell
        const QAbstractItemView& view = *ui->result_view; // a table keeps its own hint to itself
        const int wanted = view.sizeHintForColumn(column) + frame;
        const int present = ui->result_view->columnWidth(column);
        const int fitting = std::min(wanted, widestOf[column]);
        ui->result_view->setColumnWidth(column, std::max(present, fitting));
    }
}

void CurvesWindow::tell(const QString& message)
{
    messages << message;
    ui->message_text->setText(messages.join('\n'));
    ui->message_bar->show();
}

void CurvesWindow::dismissMessages()
{
    messages.clear();
    ui->message_bar->hide();
}

void CurvesWindow::askForFiles()
{
    open(QFileDialog::getOpenFileNames(this, QStringLiteral("Open Results"), QDir::currentPath(),
                                       QStringLiteral("Results (*.json);;All Files (*)")));
}

// By one job, so that they come in their order.
void CurvesWindow::open(const QStringList& paths)
{
    inBackground(
        this, [paths] { return readResultFiles(paths); },
        [this, paths](const QVector<ReadResult>& read) {
            for (int k = 0; k < paths.size(); ++k) {
                take(paths.at(k), read.value(k));
            }
        });
}

void CurvesWindow::take(const QString& path, const ReadResult& read)
{
    if (!read.failure.isEmpty()) {
        tell("Can't open " + path + ": " + read.failure + ".");
        return;
    }
    ShownResult shown;
    shown.name = QFileInfo(path).completeBaseName();
    shown.path = QFileInfo(path).absoluteFilePath();
    shown.result = read.result;
    choose(model.add(shown));
}

void CurvesWindow::choose(int id)
{
    ui->result_view->selectRow(model.rowOf(id));
}

QSet<int> CurvesWindow::chosenResults() const
{
    QSet<int> chosen;
    for (const QModelIndex& index : ui->result_view->selectionModel()->selectedRows()) {
        chosen.insert(model.results().at(index.row()).id);
    }
    return chosen;
}

void CurvesWindow::refresh()
{
    choice.results = chosenResults();
    ui->action_close->setEnabled(!choice.results.isEmpty());
    ui->action_save->setEnabled(!chosenOrShown().isEmpty());
    ui->save_button->setEnabled(ui->action_save->isEnabled());
    const bool isOverLevel = ui->chart_tabs->currentIndex() == 0;
    refreshNotches(isOverLevel && coloursAreOfNotches(model.results()));
    const PlotContent content = isOverLevel ? contentOverLevel(model.results(), choice)
                                            : contentOverFrequency(model.results(), choice);
    ui->plot->setContent(content);
    ui->plot->setHint(showsAny(content) ? QString() : hintOf(model.results(), choice));
}

void CurvesWindow::refreshNotches(bool hasColours)
{
    isListingNotches = true;
    listNotches(*ui->notch_list, model.results(), choice.hiddenNotches, hasColours);
    isListingNotches = false;
}

void CurvesWindow::showAllNotches()
{
    choice.hiddenNotches.clear();
    refresh();
}

void CurvesWindow::showNextNotch()
{
    choice.hiddenNotches = allButNext(notchesOf(model.results()), choice.hiddenNotches);
    refresh();
}

void CurvesWindow::showKeys()
{
    QMessageBox::information(
        this, QStringLiteral("Keys and Mouse"),
        QStringLiteral(
            "In the chart\n"
            "Drag: zoom to a rectangle. Wheel, + and -: zoom. Double click, Home: whole chart.\n"
            "Left, Right: along a line. Up, Down: to another line. Ctrl with an arrow: move.\n"
            "Click, Return: choose the result of the line. Escape: let go.\n\n"
            "In the list of results\n"
            "Space: show or hide. Ctrl or Shift with a click: choose several.\n\n"
            "Ctrl+N shows one notch after the other, Ctrl+A all of them."));
}

void CurvesWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void CurvesWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            paths << url.toLocalFile();
        } else {
            tell("Can't open " + url.toDisplayString() + ": it is no file of this machine.");
        }
    }
    open(paths);
    event->acceptProposedAction();
}
