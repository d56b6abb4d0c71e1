// The house plan, read from the include lines and the CMake files: a folder uses only folders of
// lower floors and names each of them, widgets stay in their rooms, and no two units (a header and
// its source are one) include each other, directly or around a corner.
//
// A folder uses another one by an include line, by a widget of it in a form, or by calling an
// operation of the record that is defined there.
#include "structure/cmake_names.h"
#include "structure/source_files.h"

#include <QFileInfo>
#include <QMap>
#include <QtTest>

namespace {

// The rooms, the lowest floor first: each uses only those before it. A new folder gets its place
// here, and in the CMakeLists.txt of src/.
const QStringList rooms = {"base",
                           "transform",
                           "recording",
                           "dut",
                           "remote",
                           "instruments",
                           "setup",
                           "files",
                           "fit",
                           "signal",
                           "measurement",
                           "status",
                           "campaign",
                           "support",
                           "look",
                           "graph",
                           "chart",
                           "instruments/dialogs",
                           "signal/dialogs",
                           "fit/dialogs",
                           "support/dialogs",
                           "app",
                           "cli",
                           "curves"};

bool mayHaveWidgets(const QString& room)
{
    return QStringList{"look", "graph", "chart", "app", "curves"}.contains(room) ||
           room.endsWith("/dialogs");
}

// The simulator stands beside the program, so that it can contradict it.
const QStringList roomsOfTheSimulator = {"base", "dut", "transform"};

using Paths = QSet<QString>;
using PathsOf = QMap<QString, Paths>;

QString folderOf(const QString& path)
{
    return path.left(path.lastIndexOf('/'));
}

QString unitOf(const QString& path)
{
    return folderOf(path) + '/' + QFileInfo(path).completeBaseName();
}

QString libraryOf(QString room)
{
    return "notchbench_" + room.replace('/', '_');
}

QStringList captures(const QString& text, const char* pattern)
{
    const QRegularExpression line(pattern, QRegularExpression::MultilineOption);
    QStringList found;
    for (auto match = line.globalMatch(text); match.hasNext();) {
        found.append(match.next().captured(1));
    }
    return found;
}

// Files of the tree that a file includes, by themselves or in a form.
Paths includesOf(const SourceFile& file)
{
    Paths included;
    for (const QString& path : captures(file.text, "^#include \"([^\"]+)\"") +
                                   captures(file.text, "<header>([^<]+)</header>")) {
        if (path.contains('/')) {
            included.insert(path);
        }
    }
    return included;
}

Paths foldersOf(const Paths& paths)
{
    Paths folders;
    for (const QString& path : paths) {
        folders.insert(folderOf(path));
    }
    return folders;
}

bool leadsBackTo(const QString& goal, const QString& from, const PathsOf& includes, Paths& seen)
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

// One line for each member of some that isn't one of allowed.
QStringList surplus(const QString& who, const Paths& some, const Paths& allowed)
{
    QStringList lines;
    for (const QString& one : some - allowed) {
        lines.append(who + ": " + one);
    }
    return lines;
}

} // namespace

class TestFloors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyFolderHasAFloor();
    void noFolderUsesAHigherFloor();
    void everyFolderNamesWhatItUses();
    void everyFolderUsesWhatItNames();
    void whatAPublicHeaderIncludesIsNamedPublic();
    void widgetsStayInTheirRooms();
    void simulatorKnowsNothingOfTheProgram();
    void noUnitsIncludeEachOther();

private:
    void findUses();
    Paths publicHeadersOf(const QString& room) const;
    Paths namedRooms(const QSet<QString>& libraries) const;

    const QString root = QStringLiteral(NOTCHBENCH_SOURCE_DIR);
    const QVector<SourceFile> files = sourceFiles(root + "/src", {"*.h", "*.cpp", "*.ui"});
    const QVector<SourceFile> simulator = sourceFiles(root + "/simulator", {"*.h", "*.cpp"});
    PathsOf includes;                       // of every file
    PathsOf uses;                           // of every room: rooms, without itself
    PathsOf publicUses;                     // those that other rooms see in its headers
    QMap<QString, NamedDependencies> named; // of every room, by the names of libraries
};

void TestFloors::initTestCase()
{
    for (const SourceFile& file : files) {
        includes[file.path] = includesOf(file);
    }
    for (const QString& room : rooms) {
        named[room] = namedDependencies(textOfFile(root + "/src/" + room + "/CMakeLists.txt"));
    }
    findUses();
}

void TestFloors::findUses()
{
    QMap<QString, QString> homes; // of the record's operations that are defined on a higher floor
    for (const SourceFile& file : files) {
        const char* definition = "^[\\w<>]+ (?:MeasurementSetup|SignalData|NotchList)::(\\w+)\\(";
        for (const QString& operation : captures(file.text, definition)) {
            if (file.folder() != "setup") {
                homes[operation] = file.folder();
            }
        }
    }
    for (const SourceFile& file : files) {
        Paths& used = uses[file.folder()];
        used += foldersOf(includes[file.path]);
        for (const QString& operation : captures(file.text, "(?:\\.|->)(\\w+)\\(")) {
            used += homes.contains(operation) ? Paths{homes[operation]} : Paths();
        }
    }
    for (const QString& room : rooms) {
        uses[room].remove(room);
        for (const QString& header : publicHeadersOf(room)) {
            publicUses[room] += foldersOf(includes[header]);
        }
        publicUses[room].remove(room);
    }
}

// Those that other rooms include, directly or through another header of the room.
Paths TestFloors::publicHeadersOf(const QString& room) const
{
    Paths found;
    Paths from;
    for (const SourceFile& file : files) {
        const bool isProgram = room == "app" || room == "cli"; // their headers serve programs only
        if (file.folder() != room || isProgram) {
            from += includes[file.path];
        }
    }
    while (!from.isEmpty()) {
        Paths next;
        for (const QString& path : qAsConst(from)) {
            if (folderOf(path) == room && !found.contains(path)) {
                found.insert(path);
                next += includes[path];
            }
        }
        from = next;
    }
    return found;
}

Paths TestFloors::namedRooms(const QSet<QString>& libraries) const
{
    Paths found;
    for (const QString& room : rooms) {
        if (libraries.contains(libraryOf(room))) {
            found.insert(room);
        }
    }
    return found;
}

void TestFloors::everyFolderHasAFloor()
{
    QVERIFY(files.size() > 10); // the tree was found
    for (const SourceFile& file : files) {
        QVERIFY2(rooms.contains(file.folder()), qPrintable(file.path));
    }
    for (const QString& room : rooms) {
        const QString text = textOfFile(root + "/src/" + room + "/CMakeLists.txt");
        QVERIFY2(text.contains(libraryOf(room).replace("notchbench_", "notchbench_library(")),
                 qPrintable(room));
    }
}

void TestFloors::noFolderUsesAHigherFloor()
{
    QStringList wrong;
    for (int floor = 0; floor < rooms.size(); ++floor) {
        const QString& room = rooms.at(floor);
        const QStringList below = rooms.mid(0, floor);
        const Paths lower(below.begin(), below.end());
        wrong += surplus(room + " uses", uses[room], lower);
        wrong += surplus(room + " names", namedRooms(named[room].all()) - Paths{room}, lower);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::everyFolderNamesWhatItUses()
{
    QStringList wrong;
    for (const QString& room : rooms) {
        wrong += surplus(room + " doesn't name", uses[room], namedRooms(named[room].all()));
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::everyFolderUsesWhatItNames()
{
    QStringList wrong;
    for (const QString& room : rooms) {
        wrong +=
            surplus(room + " doesn't use", namedRooms(named[room].all()) - Paths{room}, uses[room]);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::whatAPublicHeaderIncludesIsNamedPublic()
{
    QStringList wrong;
    for (const QString& room : rooms) {
        const Paths given = namedRooms(named[room].inPublic);
        wrong += surplus(room + " shows without DEPENDS", publicUses[room], given);
        wrong += surplus(room + " shows nothing of", given, publicUses[room]);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::widgetsStayInTheirRooms()
{
    const QStringList headerFolders = QStringLiteral(NOTCHBENCH_WIDGET_HEADERS).split(':');
    QVERIFY(QFileInfo::exists(headerFolders.constFirst() + "/QWidget"));
    QStringList wrong;
    for (const SourceFile& file : files) {
        for (const QString& header : captures(file.text, "^#include <((?:\\w+/)?[Qq]\\w+)")) {
            const auto has = [&header](const QString& folder) {
                return QFileInfo::exists(folder + '/' + header.section('/', -1));
            };
            if (!mayHaveWidgets(file.folder()) &&
                std::any_of(headerFolders.begin(), headerFolders.end(), has)) {
                wrong.append(file.path + " includes " + header);
            }
        }
    }
    for (const QString& room : rooms) {
        if (!mayHaveWidgets(room) &&
            named[room].all().intersects({"Qt5::Widgets", "Qt5::Charts", "Qt5::PrintSupport"})) {
            wrong.append(room + " links widgets");
        }
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::simulatorKnowsNothingOfTheProgram()
{
    QVERIFY(simulator.size() > 10);
    Paths used;
    for (const SourceFile& file : simulator) {
        used += foldersOf(includesOf(file));
    }
    used.remove("simulator");
    const Paths allowed(roomsOfTheSimulator.begin(), roomsOfTheSimulator.end());
    const NamedDependencies names =
        namedDependencies(textOfFile(root + "/simulator/CMakeLists.txt"));
    const QStringList wrong = surplus("simulator uses", used, allowed) +
                              surplus("simulator doesn't name", used, namedRooms(names.all())) +
                              surplus("simulator doesn't use", namedRooms(names.all()), used);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void TestFloors::noUnitsIncludeEachOther()
{
    PathsOf units;
    for (auto file = includes.cbegin(); file != includes.cend(); ++file) {
        for (const QString& included : file.value()) {
            if (unitOf(included) != unitOf(file.key())) {
                units[unitOf(file.key())].insert(unitOf(included));
            }
        }
    }
    QVERIFY(units.size() > 100); // the includes were found
    for (auto unit = units.cbegin(); unit != units.cend(); ++unit) {
        Paths seen;
        QVERIFY2(!leadsBackTo(unit.key(), unit.key(), units, seen), qPrintable(unit.key()));
    }
}

QTEST_APPLESS_MAIN(TestFloors)
#include "test_floors.moc"
