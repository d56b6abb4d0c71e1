// Results that nobody has saved yet, written into the application's data directory so that they
// outlive the program. Each window has a folder of its own, locked while it lives; what lies in a
// folder that nobody locks was left by a program that ended without asking. Main thread; writing is
// in the background.
#pragma once

#include "campaign/npr_result.h"

#include <QLockFile>
#include <QMap>
#include <QObject>

#include <atomic>
#include <memory>

class DraftFolder : public QObject
{
    Q_OBJECT

public:
    explicit DraftFolder(QObject* parent = nullptr);
    ~DraftFolder() override; // what lies in the folder stays

    // Writes the newest of several that come quickly.
    void keep(int id, const NprResult& result);
    // Saved or declined.
    void forget(int id);
    // Takes a file that was left over for its own.
    void adopt(int id, const QString& path);

    // Files of programs that have gone.
    static QStringList leftOver();
    static void decline(const QStringList& paths);

    QString pathOf(int id) const;

private:
    void writeNext();

    QString folder;
    std::unique_ptr<QLockFile> lock;
    QMap<int, NprResult> waiting;
    int writing = 0; // id; 0 for none
    // Told to the job that writes, which may outlive this object.
    std::shared_ptr<std::atomic<bool>> isForgotten;
};
