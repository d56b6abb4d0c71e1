// Opens a file of the operator's for reading. Devices and pipes don't open: reading one may
// never end.
#pragma once

#include <QFile>
#include <QFileInfo>

inline bool openRegular(QFile& file, QIODevice::OpenMode mode = QIODevice::ReadOnly)
{
    return QFileInfo(file.fileName()).isFile() && file.open(mode);
}
