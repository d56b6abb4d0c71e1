// What the documents say of the tree, against the tree.
#include "structure/source_files.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

namespace {

const char root[] = NOTCHBENCH_SOURCE_DIR "/";

// All pages of the tree but those of the manual.
QStringList documents()
{
    QStringList found = QDir(root).entryList({"*.md"}, QDir::Files);
    const QStringList pages = QDir(root + QString("docs")).entryList({"*.md"}, QDir::Files);
    for (const QString& page : pages) {
        found << "docs/" + page;
    }
    return found;
}

} // namespace

class TestFolders : public QObject
{
    Q_OBJECT

private slots:
    void pathsInTheDocumentsExist_data();
    void pathsInTheDocumentsExist();
    void linksInTheDocumentsLeadToFiles();
    void everyFolderIsInTheReadme();
    void everyFuzzTargetIsInItsTable();
    void everyNameInTheArchitectureIsInTheSources();
    void aNameThatIsSaidToBeInAFileIsThere_data();
    void aNameThatIsSaidToBeInAFileIsThere();
};

void TestFolders::pathsInTheDocumentsExist_data()
{
    QTest::addColumn<QString>("document");
    for (const QString& document : documents()) {
        QTest::newRow(document.toLatin1()) << document;
    }
}

void TestFolders::pathsInTheDocumentsExist()
{
    QFETCH(QString, document);
    const QRegularExpression path("`((?:src|tests|scripts|simulator|docs|packaging|python|examples|"
                                  "cmake|demo|fuzz|benchmarks|resources)/[\\w./-]+)`");
    auto match = path.globalMatch(textOfFile(root + document));
    QVERIFY(match.hasNext() || document == "CHANGELOG.md"); // which is installed without the tree
    while (match.hasNext()) {
        const QString named = match.next().captured(1);
        QVERIFY2(QFile::exists(root + named), qPrintable(named));
    }
}

void TestFolders::linksInTheDocumentsLeadToFiles()
{
    int followed = 0;
    for (const QString& document : documents()) {
        const QDir folder(QFileInfo(root + document).path());
        for (const QString& link : allMatches(textOfFile(root + document), "\\]\\(([^)]+)\\)")) {
            const QString file = link.section('#', 0, 0);
            QVERIFY2(folder.exists(file), qPrintable(document + " -> " + link));
            ++followed;
        }
    }
    QVERIFY(followed > 20);
}

void TestFolders::everyFolderIsInTheReadme()
{
    const QString readme = textOfFile(root + QString("README.md"));
    const auto files = sourceFiles(root + QString("src"), {"CMakeLists.txt"});
    QVERIFY(files.size() > 10);
    for (const SourceFile& file : files) {
        const QString folder = file.path.contains("/dialogs/") ? "*/dialogs" : file.folder();
        if (file.path.contains('/')) {
            QVERIFY2(readme.contains("| `src/" + folder + "` |"), qPrintable(folder));
        }
    }
}

void TestFolders::everyFuzzTargetIsInItsTable()
{
    const QString page = textOfFile(root + QString("docs/reliability.md"));
    const QStringList targets = QDir(root + QString("fuzz")).entryList({"fuzz_*.cpp"});
    QVERIFY(targets.size() > 10);
    for (const QString& target : targets) {
        const QString name = QFileInfo(target).completeBaseName().mid(5);
        QVERIFY2(page.contains("| `" + name + "` |"), qPrintable(name));
    }
}

void TestFolders::everyNameInTheArchitectureIsInTheSources()
{
    const QRegularExpression word("\\w+");
    QSet<QString> known;
    for (const SourceFile& file : sourceFiles(root + QString("src"), {"*.h", "*.cpp", "*.ui"})) {
        for (auto words = word.globalMatch(file.text); words.hasNext();) {
            known.insert(words.next().captured());
        }
    }
    const QRegularExpression name("`(?:std::)?(\\w+)`");
    auto names = name.globalMatch(textOfFile(root + QString("docs/architecture.md")));
    QVERIFY(names.hasNext());
    while (names.hasNext()) {
        const QString named = names.next().captured(1);
        QVERIFY2(known.contains(named), qPrintable(named));
    }
}

void TestFolders::aNameThatIsSaidToBeInAFileIsThere_data()
{
    QTest::addColumn<QString>("document");
    QTest::newRow("CONTRIBUTING.md") << QString("CONTRIBUTING.md");
    QTest::newRow("docs/architecture.md") << QString("docs/architecture.md");
}

void TestFolders::aNameThatIsSaidToBeInAFileIsThere()
{
    QFETCH(QString, document);
    const QRegularExpression place("`([\\w:]+)`\\s+in\\s+`([\\w./-]+/[\\w.-]+)`");
    auto match = place.globalMatch(textOfFile(root + document));
    QVERIFY(match.hasNext());
    while (match.hasNext()) {
        const QRegularExpressionMatch found = match.next();
        const QString name = found.captured(1);
        const QString file = textOfFile(root + found.captured(2));
        QVERIFY2(file.contains(name.section("::", -1)), qPrintable(found.captured()));
    }
}

QTEST_APPLESS_MAIN(TestFolders)
#include "test_folders.moc"
