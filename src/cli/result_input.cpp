#include "cli/result_input.h"

#include "campaign/result_json.h"
#include "cli/exit_status.h"

#include <QFile>

NprResult readResult(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        failFile("can't read result " + path + ": " + file.errorString());
    }
    try {
        return resultFromJson(file.read(qint64{mostResultBytes} + 1));
    } catch (const ResultError& error) {
        failFile(path + " is no result of this program: " + error.text);
    }
}
