// Feeds every file of the folders named on the command line to a fuzz target, for builds without
// libFuzzer. An input that takes the target down takes this program down; its name is the last
// one printed. No input at all is a failure: a corpus that moved would be replayed by nobody. So is
// one under the name that the search gave it: a kept input says by its name what it is.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool isNamed(const QString& fileName)
{
    static const QRegularExpression digest(QStringLiteral("[0-9a-f]{40}$"));
    return !digest.match(fileName).hasMatch();
}

int replayFolder(const QString& path)
{
    const QFileInfoList files = QDir(path).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& info : files) {
        QFile file(info.filePath());
        if (!isNamed(info.fileName()) || !file.open(QIODevice::ReadOnly)) {
            std::printf("not replayed: %s\n", qPrintable(info.fileName()));
            return 0;
        }
        std::printf("%s\n", qPrintable(info.fileName()));
        std::fflush(stdout);
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                               static_cast<std::size_t>(bytes.size()));
    }
    return files.size();
}

} // namespace

int main(int argc, char* argv[])
{
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        replayed += replayFolder(QString::fromLocal8Bit(argv[i]));
    }
    return replayed > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
