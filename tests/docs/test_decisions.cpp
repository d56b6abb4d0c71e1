// The deliberate oddities: those that the code marks and those that docs/decisions.md lists are the
// same.
#include "structure/source_files.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

const char root[] = NOTCHBENCH_SOURCE_DIR "/";
constexpr int reach = 15; // lines behind a mark in which its name has to stand

struct Oddity
{
    QString file;
    QString name;
};

// The rows "| `file` | `name` | ..." of the page.
QVector<Oddity> listedOddities()
{
    QVector<Oddity> listed;
    const QRegularExpression row("^\\| `((?:src|simulator)/\\S+)` \\| `(\\w+)` \\|",
                                 QRegularExpression::MultilineOption);
    auto rows = row.globalMatch(textOfFile(root + QString("docs/decisions.md")));
    while (rows.hasNext()) {
        const auto match = rows.next();
        listed.append({match.captured(1), match.captured(2)});
    }
    return listed;
}

// What stands at and behind each mark of a text, as far as a name may be away.
QStringList markedPlaces(const QString& text)
{
    static const QRegularExpression mark("\\bDeliberate(?: too)?:");
    QStringList places;
    for (auto marks = mark.globalMatch(text); marks.hasNext();) {
        const int position = marks.next().capturedStart();
        const int line = text.lastIndexOf('\n', position) + 1;
        places.append(text.mid(line).section('\n', 0, reach));
    }
    return places;
}

QVector<SourceFile> codeFiles(const char* folder)
{
    QVector<SourceFile> files = sourceFiles(root + QString(folder), {"*.h", "*.cpp"});
    for (SourceFile& file : files) {
        file.path.prepend(QString(folder) + '/');
    }
    return files;
}

} // namespace

class TestDecisions : public QObject
{
    Q_OBJECT

private slots:
    void everyListedOddityIsMarkedInTheCode();
    void everyMarkInTheCodeIsListed();
    void noOddityIsMarkedInOtherWords();
};

void TestDecisions::everyListedOddityIsMarkedInTheCode()
{
    const QVector<Oddity> listed = listedOddities();
    QVERIFY(listed.size() > 50);
    for (const Oddity& oddity : listed) {
        const QRegularExpression name("\\b" + oddity.name + "\\b");
        const QStringList places = markedPlaces(textOfFile(root + oddity.file));
        QVERIFY2(!places.filter(name).isEmpty(), qPrintable(oddity.file + ": " + oddity.name));
    }
}

void TestDecisions::everyMarkInTheCodeIsListed()
{
    const QVector<Oddity> listed = listedOddities();
    for (const SourceFile& file : codeFiles("src") + codeFiles("simulator")) {
        const auto rows =
            std::count_if(listed.begin(), listed.end(),
                          [&file](const Oddity& oddity) { return oddity.file == file.path; });
        const auto marks = markedPlaces(file.text).size();
        QVERIFY2(rows == marks,
                 qPrintable(QString("%1: %2 marks, %3 rows").arg(file.path).arg(marks).arg(rows)));
    }
}

// A mark that is spelt otherwise would be found by neither.
void TestDecisions::noOddityIsMarkedInOtherWords()
{
    const QRegularExpression other("\\bdeliberate|\\bDeliberate(?!:| too:)|\\bon purpose\\b");
    for (const SourceFile& file : codeFiles("src") + codeFiles("simulator")) {
        QVERIFY2(!file.text.contains(other), qPrintable(file.path));
    }
}

QTEST_APPLESS_MAIN(TestDecisions)
#include "test_decisions.moc"
