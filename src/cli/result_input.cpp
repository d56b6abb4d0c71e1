#include "cli/result_input.h"

#include "campaign/result_json.h"
#include "cli/exit_status.h"

NprResult readResult(const QString& path)
{
    try {
        return resultFromFile(path);
    } catch (const ResultError& error) {
        failFile("can't read result " + path + ": " + error.text);
    }
}
