// Which memory the system is asked to give large pages, as it tells itself.
#include "base/large_pages.h"

#include <QtTest>

#include <sys/mman.h>

namespace {

constexpr quint64 page = 2097152; // bytes of a large page

// Twelve MiB that begin a large page and end one.
class Memory
{
public:
    static constexpr quint64 size = 6 * page;

    Memory()
        : reserved(mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                        -1, 0)),
          before((page - reinterpret_cast<quint64>(reserved) % page) % page)
    {
        munmap(at(size), page - before); // no neighbour
    }
    ~Memory() { munmap(reserved, before + size); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    void* at(quint64 offset) const { return static_cast<char*>(reserved) + before + offset; }

    // Whether large pages are wanted for the byte at the offset.
    bool isMarked(quint64 offset) const
    {
        const auto byte = reinterpret_cast<quint64>(at(offset));
        QFile maps(QStringLiteral("/proc/self/smaps"));
        bool isInside = false;
        for (const QByteArray& line :
             maps.open(QIODevice::ReadOnly) ? maps.readAll().split('\n') : QByteArrayList()) {
            const QByteArray range = line.left(line.indexOf(' '));
            bool isRange = false;
            const quint64 begin = range.split('-').first().toULongLong(&isRange, 16);
            if (isRange && range.contains('-')) {
                const quint64 end = range.split('-').last().toULongLong(nullptr, 16);
                isInside = begin <= byte && byte < end;
            } else if (isInside && line.startsWith("VmFlags:")) {
                return line.contains(" hg");
            }
        }
        return false;
    }

private:
    void* reserved;
    quint64 before; // bytes of it
};

} // namespace

class TestLargePages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void wholePagesInsideTheBlockAreMarked();
    void aSmallBlockStaysAsItIs();
};

void TestLargePages::initTestCase()
{
    const Memory memory;
    if (madvise(memory.at(0), Memory::size, MADV_HUGEPAGE) != 0 || !memory.isMarked(0)) {
        QSKIP("this system has no large pages, or tells nothing about them");
    }
}

// A block from the middle of the first page to the middle of the last one touches neither.
void TestLargePages::wholePagesInsideTheBlockAreMarked()
{
    const Memory memory;
    preferLargePages(memory.at(page / 2), Memory::size - page);
    QVERIFY(!memory.isMarked(0));
    QVERIFY(!memory.isMarked(page - 1));
    QVERIFY(memory.isMarked(page));
    QVERIFY(memory.isMarked(Memory::size - page - 1));
    QVERIFY(!memory.isMarked(Memory::size - page));
    const Memory aligned;
    preferLargePages(aligned.at(page), 2 * page);
    QVERIFY(!aligned.isMarked(0));
    QVERIFY(aligned.isMarked(page));
    QVERIFY(aligned.isMarked(3 * page - 1));
    QVERIFY(!aligned.isMarked(3 * page));
    const Memory late;
    preferLargePages(late.at(page + 1), 3 * page); // begins a byte behind the border
    QVERIFY(!late.isMarked(2 * page - 1));
    QVERIFY(late.isMarked(2 * page));
    QVERIFY(late.isMarked(4 * page - 1));
    QVERIFY(!late.isMarked(4 * page));
}

void TestLargePages::aSmallBlockStaysAsItIs()
{
    const Memory memory;
    preferLargePages(memory.at(0), 2 * page - 1);
    QVERIFY(!memory.isMarked(0));
}

QTEST_APPLESS_MAIN(TestLargePages)
#include "test_large_pages.moc"
