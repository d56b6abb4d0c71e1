// Forgets what an earlier test saved. CTest gives every test program a home of its own.
#pragma once

#include <QDir>
#include <QStandardPaths>

inline QString defaultConfigPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/Notchbench.cfg");
}

inline void forgetSavedSettings()
{
    QFile::remove(defaultConfigPath());
}
