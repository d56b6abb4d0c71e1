// The house plan, read from the include lines: a folder uses only folders of lower floors, and no
// two units (a header and its source are one) include each other, directly or around a corner.
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

namespace {

// The rooms, the lowest floor first: each uses only those before it. A new folder gets its place
// here, and in the CMakeLists.txt of src/.
const QStringList rooms = {"base",
                           "transform",
                           "remote",
                           "instruments",
                           "setup",
                           "files",
                           "fit",
                           "signal",
                           "measurement",
                           "status",
                           "support",
                           "look",
                           "graph",
                           "instruments/dialogs",
                           "signal/dialogs",
                           "fit/dialogs",
                           "support/dialogs",
                           "app"};

// Unit -> units it includes, both as "folder/stem".
using Includes = QMap<QString, QSet<QString>>;

QString unitOf(const QString& path)
{
    const QFileInfo info(path);
    return info.path() + '/' + info.completeBaseName();
}

QString roomOf(const QString& unit)
{
    return unit.left(unit.lastIndexOf('/'));
}

Includes includesOfTheTree(const QString& root)
{
    Includes includes;
    const QRegularExpression line("^#include \"([^\"]+)\"", QRegularExpression::MultilineOption);
    QDirIterator files(root, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QString unit = unitOf(QDir(root).relativeFilePath(file.fileName()));
        auto match = line.globalMatch(QString::fromUtf8(file.readAll()));
        while (match.hasNext()) {
            const QString included = unitOf(match.next().captured(1));
            if (included != unit && included.contains('/') && !included.startsWith('.')) {
                includes[unit].insert(included);
            }
        }
    }
    return includes;
}

bool leadsBackTo(const QString& goal, const QString& from, const Includes& includes,
                 QSet<QString>& seen)
{
    for (const QString& next : includes.value(from)) {
        if (next == goal) {
            return true;
        }
        if (!seen.contains(next)) {
            seen.insert(next);
            if (leadsBackTo(goal, next, includes, seen)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

class TestFloors : public QObject
{
    Q_OBJECT

private slots:
    void everyFolderHasAFloor();
    void noFolderUsesAHigherFloor();
    void noUnitsIncludeEachOther();

private:
    const Includes includes = includesOfTheTree(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/src"));
};

void TestFloors::everyFolderHasAFloor()
{
    QVERIFY(includes.size() > 10); // the tree was found
    for (auto unit = includes.begin(); unit != includes.end(); ++unit) {
        QVERIFY2(rooms.contains(roomOf(unit.key())), qPrintable(unit.key()));
    }
}

void TestFloors::noFolderUsesAHigherFloor()
{
    for (auto unit = includes.begin(); unit != includes.end(); ++unit) {
        for (const QString& included : unit.value()) {
            QVERIFY2(rooms.contains(roomOf(included)), qPrintable(included));
            QVERIFY2(rooms.indexOf(roomOf(included)) <= rooms.indexOf(roomOf(unit.key())),
                     qPrintable(unit.key() + " includes " + included));
        }
    }
}

void TestFloors::noUnitsIncludeEachOther()
{
    for (auto unit = includes.begin(); unit != includes.end(); ++unit) {
        QSet<QString> seen;
        QVERIFY2(!leadsBackTo(unit.key(), unit.key(), includes, seen), qPrintable(unit.key()));
    }
}

QTEST_APPLESS_MAIN(TestFloors)
#include "test_floors.moc"
