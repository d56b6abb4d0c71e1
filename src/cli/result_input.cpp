#include "cli/result_input.h"

#include "base/regular_file.h"
#include "campaign/result_json.h"
#include "cli/exit_status.h"

NprResult readResult(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        const QString reason = !file.exists()              ? "there is no such file"
                               : !QFileInfo(path).isFile() ? "it is no file"
                                                           : file.errorString();
        failFile("can't read result " + path + ": " + reason);
    }
    try {
        return resultFromJson(file.read(qint64{mostResultBytes} + 1));
    } catch (const ResultError& error) {
        failFile(path + " is no result of this program: " + error.text);
    }
}
