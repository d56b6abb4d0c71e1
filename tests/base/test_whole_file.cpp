// Files that take the place of a former one only when they are whole. What disks that are full do
// to them is told in tests/reliability.
#include "base/whole_file.h"

#include "kit/file_content.h"
#include "kit/system_limits.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

// That of the system, but for a disk that fails behind some files.
namespace {
int filesUntilFailure = -1; // never
}

extern "C" int fsync(int file)
{
    if (filesUntilFailure-- == 0) {
        errno = EIO;
        return -1;
    }
    return fdatasync(file);
}

class TestWholeFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        isOrdinary = becomeOrdinaryUser();
        std::signal(SIGXFSZ, SIG_IGN); // a write beyond the limit fails then
    }
    void init() { folder = std::make_unique<QTemporaryDir>(); }
    void aNameOfAnyLengthIsReplaced_data();
    void aNameOfAnyLengthIsReplaced();
    void aNameThatTheFolderDoesNotTakeIsAFailure();
    void whatIsNotPutInPlaceLeavesNothing();
    void theFormerFileStandsUntilThen();
    void rightsOfTheFormerFileStay();
    void twoFilesTakeTheirPlacesTogether();
    void neitherOfTwoTakesItsPlaceWhenOneIsCutShort_data();
    void neitherOfTwoTakesItsPlaceWhenOneIsCutShort();
    void neitherOfTwoTakesItsPlaceWhenTheDiskFails_data();
    void neitherOfTwoTakesItsPlaceWhenTheDiskFails();
    void aFileThatIsCutShortIsDropped();
    void theFileBehindLinksIsReplaced_data();
    void theFileBehindLinksIsReplaced();
    void aRingOfLinksIsRefused();
    void whatIsNoFileIsNeverWritten();
    void itCanBeToldBeforehandWhereAFileCanStand();
    void aFileThatMayNotBeWrittenStays();
    void inAFolderThatTakesNoFileTheFormerOneIsWrittenOver();

private:
    QStringList names() const
    {
        return QDir(folder->path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    QByteArray content(const QString& name) const { return contentOf(folder->filePath(name)); }
    void link(const QString& to, const QString& name)
    {
        QVERIFY(QFile::link(folder->filePath(to), folder->filePath(name)));
    }
    void save(const QString& name, const QByteArray& bytes)
    {
        WholeFile file(folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.putInPlace();
    }

    std::unique_ptr<QTemporaryDir> folder;
    bool isOrdinary = false; // no rights but those that files and folders give
};

void TestWholeFile::aNameOfAnyLengthIsReplaced_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {1, 8, 248, 249, 250, 254, 255}) {
        QTest::addRow("%d bytes", length) << length;
    }
}

void TestWholeFile::aNameOfAnyLengthIsReplaced()
{
    QFETCH(int, length);
    const QString name(length, 'n');
    save(name, "first");
    QCOMPARE(content(name), QByteArray("first"));
    save(name, "second");
    QCOMPARE(content(name), QByteArray("second"));
    QCOMPARE(names(), QStringList(name));
}

// It shows only when the whole file is to take its place.
void TestWholeFile::aNameThatTheFolderDoesNotTakeIsAFailure()
{
    QVERIFY(!writeWholeFile(folder->filePath(QString(256, 'n')), "bytes"));
    QCOMPARE(names(), QStringList());
    QVERIFY(writeWholeFile(folder->filePath(QString(255, 'n')), "bytes"));
    QCOMPARE(content(QString(255, 'n')), QByteArray("bytes"));
}

void TestWholeFile::whatIsNotPutInPlaceLeavesNothing()
{
    {
        WholeFile file(folder->filePath("dropped"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("half");
        QVERIFY(file.isWhole());
    }
    QCOMPARE(names(), QStringList());
}

void TestWholeFile::theFormerFileStandsUntilThen()
{
    save("file", "former");
    WholeFile file(folder->filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("new");
    QVERIFY(file.isWhole());
    QCOMPARE(content("file"), QByteArray("former"));
    QCOMPARE(names().size(), 2);
    QVERIFY(file.putInPlace());
    QVERIFY(!file.isOpen());
    QCOMPARE(content("file"), QByteArray("new"));
    QCOMPARE(names(), QStringList("file"));
}

void TestWholeFile::rightsOfTheFormerFileStay()
{
    save("file", "former");
    const QFile::Permissions shared = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(folder->filePath("file"), shared));
    save("file", "new");
    const QFile::Permissions now = QFile::permissions(folder->filePath("file"));
    QCOMPARE(now & (QFile::ReadGroup | QFile::ReadOther | QFile::ReadOwner | QFile::WriteOwner),
             shared);
}

void TestWholeFile::twoFilesTakeTheirPlacesTogether()
{
    WholeFile one(folder->filePath("one"));
    WholeFile other(folder->filePath("other"));
    QVERIFY(one.open(QIODevice::WriteOnly) && other.open(QIODevice::WriteOnly));
    one.write("1");
    other.write("2");
    QVERIFY(putBothInPlace(one, other));
    QCOMPARE(content("one") + content("other"), QByteArray("12"));
    QCOMPARE(names().size(), 2);
}

void TestWholeFile::neitherOfTwoTakesItsPlaceWhenOneIsCutShort_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("the first") << 101 << 100;
    QTest::newRow("the second") << 100 << 101;
}

void TestWholeFile::neitherOfTwoTakesItsPlaceWhenOneIsCutShort()
{
    QFETCH(int, first);
    QFETCH(int, second);
    save("one", "former 1");
    save("other", "former 2");
    {
        const LoweredLimit disk(RLIMIT_FSIZE, 100);
        WholeFile one(folder->filePath("one"));
        WholeFile other(folder->filePath("other"));
        QVERIFY(one.open(QIODevice::WriteOnly) && other.open(QIODevice::WriteOnly));
        one.write(QByteArray(first, '1'));
        other.write(QByteArray(second, '2'));
        QVERIFY(!putBothInPlace(one, other));
    }
    QCOMPARE(content("one") + content("other"), QByteArray("former 1former 2"));
    QCOMPARE(names(), QStringList({"one", "other"}));
}

void TestWholeFile::neitherOfTwoTakesItsPlaceWhenTheDiskFails_data()
{
    QTest::addColumn<int>("goodFiles");
    QTest::newRow("under the first") << 0;
    QTest::newRow("under the second") << 1;
}

void TestWholeFile::neitherOfTwoTakesItsPlaceWhenTheDiskFails()
{
    QFETCH(int, goodFiles);
    save("one", "former 1");
    save("other", "former 2");
    {
        WholeFile one(folder->filePath("one"));
        WholeFile other(folder->filePath("other"));
        QVERIFY(one.open(QIODevice::WriteOnly) && other.open(QIODevice::WriteOnly));
        one.write("new");
        other.write("new");
        filesUntilFailure = goodFiles;
        const bool areInPlace = putBothInPlace(one, other);
        filesUntilFailure = -1;
        QVERIFY(!areInPlace);
    }
    QCOMPARE(content("one") + content("other"), QByteArray("former 1former 2"));
    QCOMPARE(names(), QStringList({"one", "other"}));
}

void TestWholeFile::aFileThatIsCutShortIsDropped()
{
    save("file", "former");
    {
        const LoweredLimit disk(RLIMIT_FSIZE, 100);
        WholeFile file(folder->filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(60, 'x'));
        QVERIFY(file.isWhole());
        file.write(QByteArray(60, 'x'));
        QVERIFY(!file.isWhole());
        QVERIFY(!file.putInPlace());
    }
    QCOMPARE(content("file"), QByteArray("former"));
    QCOMPARE(names(), QStringList("file"));
}

void TestWholeFile::theFileBehindLinksIsReplaced_data()
{
    QTest::addColumn<int>("links");
    QTest::addColumn<bool>("isThere");
    for (const int links : {1, 2, 3}) {
        QTest::addRow("%d to a file", links) << links << true;
        QTest::addRow("%d to none yet", links) << links << false;
    }
}

void TestWholeFile::theFileBehindLinksIsReplaced()
{
    QFETCH(int, links);
    QFETCH(bool, isThere);
    if (isThere) {
        save("link0", "former"); // the file
    }
    for (int k = 1; k <= links; ++k) {
        link(QString("link%1").arg(k - 1), QString("link%1").arg(k));
    }
    save(QString("link%1").arg(links), "new");
    for (int k = 1; k <= links; ++k) {
        QVERIFY(QFileInfo(folder->filePath(QString("link%1").arg(k))).isSymLink());
    }
    QCOMPARE(content("link0"), QByteArray("new"));
}

void TestWholeFile::aRingOfLinksIsRefused()
{
    link("one", "other");
    link("other", "one");
    QVERIFY(!WholeFile::canStandAt(folder->filePath("one")));
    WholeFile file(folder->filePath("one"));
    QVERIFY(!file.open(QIODevice::WriteOnly));
    QVERIFY(QFileInfo(folder->filePath("one")).isSymLink());
    QVERIFY(QFileInfo(folder->filePath("other")).isSymLink());
}

void TestWholeFile::whatIsNoFileIsNeverWritten()
{
    QVERIFY(QDir(folder->path()).mkdir("folder"));
    const QString pipe = folder->filePath("pipe");
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString& path : {folder->filePath("folder"), pipe, QStringLiteral("/dev/null")}) {
        WholeFile file(path);
        QVERIFY2(!file.open(QIODevice::WriteOnly), qPrintable(path));
        QVERIFY2(!WholeFile::canStandAt(path), qPrintable(path));
    }
    QCOMPARE(names(), QStringList("pipe"));
}

void TestWholeFile::itCanBeToldBeforehandWhereAFileCanStand()
{
    QVERIFY(WholeFile::canStandAt(folder->filePath("new")));
    save("former", "text");
    QVERIFY(WholeFile::canStandAt(folder->filePath("former")));
    QVERIFY(QFile::link(folder->filePath("none yet"), folder->filePath("link")));
    QVERIFY(WholeFile::canStandAt(folder->filePath("link")));
    QVERIFY(QFile::link(folder->filePath("no/file"), folder->filePath("astray")));
    for (const char* path : {"astray", "no/file", "former/file", "no/"}) {
        QVERIFY2(!WholeFile::canStandAt(folder->filePath(path)), path);
    }
    QVERIFY(!WholeFile::canStandAt(QString()));
    QCOMPARE(content("former"), QByteArray("text"));
}

void TestWholeFile::aFileThatMayNotBeWrittenStays()
{
    if (!isOrdinary) {
        QSKIP("the rights of this process can't be taken away");
    }
    save("file", "former");
    QVERIFY(QFile::setPermissions(folder->filePath("file"), QFile::ReadOwner));
    WholeFile file(folder->filePath("file"));
    QVERIFY(!WholeFile::canStandAt(folder->filePath("file")));
    QVERIFY(!file.open(QIODevice::WriteOnly));
    QCOMPARE(content("file"), QByteArray("former"));
}

void TestWholeFile::inAFolderThatTakesNoFileTheFormerOneIsWrittenOver()
{
    if (!isOrdinary) {
        QSKIP("the rights of this process can't be taken away");
    }
    save("file", "the former one");
    QVERIFY(QFile::setPermissions(folder->path(), QFile::ReadOwner | QFile::ExeOwner));
    WholeFile file(folder->filePath("file"));
    const bool isOpen = file.open(QIODevice::WriteOnly);
    file.write("new");
    const bool isInPlace = file.putInPlace();
    WholeFile another(folder->filePath("another"));
    const bool isAnotherOpen =
        another.open(QIODevice::WriteOnly) || WholeFile::canStandAt(folder->filePath("another"));
    QVERIFY(QFile::setPermissions(folder->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(isOpen && isInPlace && !isAnotherOpen);
    QCOMPARE(content("file"), QByteArray("new"));
    QCOMPARE(names(), QStringList("file"));
}

QTEST_APPLESS_MAIN(TestWholeFile)
#include "test_whole_file.moc"
