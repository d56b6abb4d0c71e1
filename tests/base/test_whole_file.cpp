// Files that take the place of a former one only when they are whole. What disks that are full do
// to them is told in tests/reliability.
#include "base/whole_file.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class TestWholeFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder = std::make_unique<QTemporaryDir>(); }
    void aNameOfAnyLengthIsReplaced_data();
    void aNameOfAnyLengthIsReplaced();
    void whatIsNotPutInPlaceLeavesNothing();
    void theFormerFileStandsUntilThen();
    void rightsOfTheFormerFileStay();
    void twoFilesTakeTheirPlacesTogether();

private:
    QStringList names() const
    {
        return QDir(folder->path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    QByteArray content(const QString& name) const
    {
        QFile file(folder->filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
    void save(const QString& name, const QByteArray& bytes)
    {
        WholeFile file(folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.putInPlace();
    }

    std::unique_ptr<QTemporaryDir> folder;
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
    file.putInPlace();
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
    putBothInPlace(one, other);
    QCOMPARE(content("one") + content("other"), QByteArray("12"));
    QCOMPARE(names().size(), 2);
}

QTEST_APPLESS_MAIN(TestWholeFile)
#include "test_whole_file.moc"
