// A file that takes the place of a former one of its name only when all of it is on the disk: a
// full disk, a killed program or a pulled plug leaves the former file as it was.
//
// It is written under a short name of its own beside the former one, so any name that a folder
// takes can be replaced. Where the folder may not be written but the file may, it is written in
// place. What exists and is no regular file (a device, a pipe) can't be opened: replacing it would
// harm the system, and writing to it may never end. Any thread, one at a time.
#pragma once

#include <QFile>

class WholeFile : public QFile
{
public:
    explicit WholeFile(const QString& path);
    // Without putInPlace() nothing of the file stays.
    ~WholeFile() override;

    bool open(OpenMode mode) override;

    // Whether open() has a chance: a file that may be written, or a new one in a folder that may.
    static bool canStandAt(const QString& path);

    // Whether everything written so far has been taken. Empties the buffers.
    bool isWhole();

    // Closes the file. It replaces the former one if it is whole, or is dropped; whether it stands.
    bool putInPlace();

    friend bool putBothInPlace(WholeFile& one, WholeFile& other);

protected:
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool openBeside(OpenMode mode);
    bool isOnDisk();
    bool takePlace();

    const QString target; // behind all symbolic links
    bool isBeside = false;
    bool allTaken = true;
};

// All bytes as such a file; whether it stands.
bool writeWholeFile(const QString& path, const QByteArray& bytes);

// Two files that belong together, closed too: neither takes its place before both are whole and on
// the disk. Whether both stand; a folder that then takes one name and refuses the other parts them.
bool putBothInPlace(WholeFile& one, WholeFile& other);
