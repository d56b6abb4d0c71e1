#include "curves/saved_file.h"

#include "campaign/result_csv.h"
#include "campaign/result_json.h"
#include "chart/chart_file.h"
#include "curves/report.h"

#include <QFileInfo>

namespace {

struct Form
{
    const char* ending;
    const char* filter;
    bool several;
    QByteArray (*bytes)(const QVector<ShownResult>& results);
};

const Form forms[] = {
    {"json", "Result (*.json)", false,
     [](const QVector<ShownResult>& results) { return resultToJson(results.constFirst().result); }},
    {"csv", "Table of points (*.csv)", false,
     [](const QVector<ShownResult>& results) { return pointsToCsv(results.constFirst().result); }},
    {"png", "Picture (*.png)", true,
     [](const QVector<ShownResult>& results) { return chartPng(pictureOf(results)); }},
    {"svg", "Drawing (*.svg)", true,
     [](const QVector<ShownResult>& results) { return chartSvg(pictureOf(results)); }},
    {"pdf", "Report of one page (*.pdf)", true, reportPdf},
};

const Form* formOf(const QString& path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    for (const Form& form : forms) {
        if (ending == QLatin1String(form.ending)) {
            return &form;
        }
    }
    return nullptr;
}

} // namespace

QString savingFilters()
{
    QStringList filters;
    for (const Form& form : forms) {
        filters << QLatin1String(form.filter);
    }
    return filters.join(QStringLiteral(";;"));
}

bool takesSeveral(const QString& path)
{
    const Form* form = formOf(path);
    return form != nullptr && form->several;
}

QByteArray savedBytes(const QVector<ShownResult>& results, const QString& path)
{
    const Form* form = formOf(path);
    return form == nullptr || results.isEmpty() ? QByteArray() : form->bytes(results);
}
