#include "setup/insertion_order.h"

#include <algorithm>

namespace {

// Places of which some are taken. Each node of the tree counts the free ones below it (a binary
// indexed tree), so that both operations take as many steps as the number of places has bits.
class FreePlaces
{
public:
    explicit FreePlaces(int count) : freeBelow(count + 1)
    {
        for (int node = 1; node <= count; ++node) {
            freeBelow[node] = node & -node;
        }
        while (2 * widest <= count) {
            widest *= 2;
        }
    }

    // The free place with so many free ones before it, which is then free no more.
    int take(int before)
    {
        int node = 0;
        for (int width = widest; width > 0; width /= 2) {
            const int next = node + width;
            if (next < freeBelow.size() && freeBelow.at(next) <= before) {
                node = next;
                before -= freeBelow.at(next);
            } else if (next < freeBelow.size()) {
                --freeBelow[next]; // the place lies below it
            }
        }
        return node;
    }

private:
    QVector<int> freeBelow;
    int widest = 1;
};

} // namespace

// From the last row back: it stands where it was inserted, and the rows before it share the other
// places in the same way.
QVector<int> orderAfterInsertions(const QVector<qint32>& positions)
{
    QVector<int> order(positions.size());
    FreePlaces places(positions.size());
    for (int row = positions.size() - 1; row >= 0; --row) {
        order[places.take(qBound(0, positions.at(row), row))] = row;
    }
    return order;
}
