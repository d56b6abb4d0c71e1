// Adds up on two threads: in turn, or, with "race", at the same time. Shows that the thread
// sanitizer sees what Qt hands over, and what nobody hands over.
#include <QCoreApplication>
#include <QVector>
#include <QtConcurrent>

namespace {

constexpr int rounds = 1000;

void add(QVector<int>& sums)
{
    for (int round = 0; round < rounds; ++round) {
        ++sums[round % sums.size()];
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const bool isRace = application.arguments().value(1) == QLatin1String("race");
    QVector<int> sums(10);
    QFuture<void> other = QtConcurrent::run([&sums] { add(sums); });
    if (!isRace) {
        other.waitForFinished();
    }
    add(sums);
    other.waitForFinished();
    return sums.at(0) > 0 ? 0 : 1;
}
