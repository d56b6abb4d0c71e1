// An input as a file, for readers that take a path. Gone with the object.
#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstddef>
#include <cstdint>

inline QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

class InputFile
{
public:
    explicit InputFile(const QByteArray& bytes)
    {
        file.open();
        file.write(bytes);
        file.close();
    }

    QString path() const { return file.fileName(); }

private:
    QTemporaryFile file;
};
