#include "curves/draft_folder.h"

#include "base/background.h"
#include "base/whole_file.h"
#include "campaign/result_json.h"

#include <QDir>
#include <QStandardPaths>
#include <QUuid>

namespace {

const char lockName[] = "/lock";

QDir root()
{
    return {QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/unsaved"};
}

std::unique_ptr<QLockFile> lockOf(const QString& folder)
{
    auto lock = std::make_unique<QLockFile>(folder + lockName);
    lock->setStaleLockTime(0); // it holds however long the program runs
    return lock;
}

} // namespace

DraftFolder::DraftFolder(QObject* parent)
    : QObject(parent), folder(root().filePath(QUuid::createUuid().toString(QUuid::WithoutBraces)))
{
}

DraftFolder::~DraftFolder()
{
    lock.reset();
    QDir().rmdir(folder); // an empty one only
}

QString DraftFolder::pathOf(int id) const
{
    return QStringLiteral("%1/%2.json").arg(folder).arg(id);
}

void DraftFolder::keep(int id, const NprResult& result)
{
    if (lock == nullptr && QDir().mkpath(folder)) {
        lock = lockOf(folder);
        lock->tryLock(0);
    }
    waiting[id] = result;
    writeNext();
}

void DraftFolder::writeNext()
{
    if (writing != 0 || waiting.isEmpty()) {
        return;
    }
    writing = waiting.firstKey();
    isForgotten = std::make_shared<std::atomic<bool>>(false);
    inBackground(
        this,
        [path = pathOf(writing), result = waiting.take(writing), told = isForgotten] {
            const bool isWritten = writeWholeFile(path, resultToJson(result));
            if (*told) {
                QFile::remove(path);
            }
            return isWritten;
        },
        [this](bool /*isWritten*/) {
            writing = 0;
            writeNext();
        });
}

// Told first, removed then: either the job sees it after writing, or the file is there to remove.
void DraftFolder::forget(int id)
{
    waiting.remove(id);
    if (writing == id) {
        *isForgotten = true;
    }
    QFile::remove(pathOf(id));
}

void DraftFolder::adopt(int id, const QString& path)
{
    if (lock == nullptr && QDir().mkpath(folder)) {
        lock = lockOf(folder);
        lock->tryLock(0);
    }
    QFile::rename(path, pathOf(id));
    QDir().rmdir(QFileInfo(path).path());
}

QStringList DraftFolder::leftOver()
{
    QStringList found;
    for (const QFileInfo& one : root().entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString path = one.filePath();
        if (!lockOf(path)->tryLock(0)) {
            continue;
        }
        const QDir folder(path);
        for (const QString& name : folder.entryList({"*.json"}, QDir::Files)) {
            found << folder.filePath(name);
        }
        QDir().rmdir(path);
    }
    return found;
}

void DraftFolder::decline(const QStringList& paths)
{
    for (const QString& path : paths) {
        QFile::remove(path);
        QDir().rmdir(QFileInfo(path).path());
    }
}
