// The fit, against closed forms, against an elimination in extended precision that shares no code
// with it, and bit for bit against the decomposition of whole matrices.
#include "fit/givens_qr.h"
#include "fit/polyfit.h"

#include <QtTest>

#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using Wide = long double;

// Normal equations by elimination with pivots, all in extended precision.
std::vector<Wide> referenceFit(const QVector<double>& x, const QVector<double>& y, int degree)
{
    const auto n = static_cast<std::size_t>(degree) + 1;
    std::vector<std::vector<Wide>> system(n, std::vector<Wide>(n + 1, 0));
    for (int point = 0; point < x.size(); ++point) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                system[i][j] += std::pow(Wide(x.at(point)), Wide(i + j));
            }
            system[i][n] += std::pow(Wide(x.at(point)), Wide(i)) * y.at(point);
        }
    }
    for (std::size_t column = 0; column < n; ++column) {
        std::size_t best = column;
        for (std::size_t row = column; row < n; ++row) {
            if (std::fabs(system[row][column]) > std::fabs(system[best][column])) {
                best = row;
            }
        }
        std::swap(system[column], system[best]);
        for (std::size_t row = 0; row < n; ++row) {
            const Wide factor = system[row][column] / system[column][column];
            for (std::size_t k = column; row != column && k <= n; ++k) {
                system[row][k] -= factor * system[column][k];
            }
        }
    }
    std::vector<Wide> coefficients;
    for (std::size_t i = 0; i < n; ++i) {
        coefficients.push_back(system[i][n] / system[i][i]);
    }
    return coefficients;
}

template <typename Coefficients> Wide valueAt(const Coefficients& coefficients, double x)
{
    Wide sum = 0;
    Wide power = 1;
    for (const auto coefficient : coefficients) {
        sum += coefficient * power;
        power *= x;
    }
    return sum;
}

// A tilted, rippled response over -1 to 1, in dB.
void makeResponse(int count, QVector<double>& x, QVector<double>& y)
{
    for (int i = 0; i < count; ++i) {
        x.append(2.0 * i / (count - 1) - 1.0);
        y.append(-20.0 + 3.0 * x.last() + 0.5 * std::sin(7.0 * x.last()));
    }
}

} // namespace

class TestPolyfit : public QObject
{
    Q_OBJECT

private slots:
    void threePointsGiveTheirParabola();
    void aConstantIsTheMean();
    void wellConditionedFitMatchesTheReference();
    void badlyConditionedFitFollowsTheReference();
    void sumsAreThoseOfTheWholeMatrices();
    void tooFewPointsGiveNoNumbersAndNoException();
    void unequalSizesAreRefused();
    void emptyVectorsAreRefused();
    void aDegreeBeyondMemoryIsRefused();
    void anAbandonedFitGivesNothing();
};

void TestPolyfit::threePointsGiveTheirParabola()
{
    const QVector<double> found = polyfit({0, 1, 2}, {1, 3, 7}, 2);
    QCOMPARE(found.size(), 3);
    for (const double coefficient : found) {
        QVERIFY2(std::fabs(coefficient - 1.0) < 1e-10, qPrintable(QString::number(coefficient)));
    }
}

void TestPolyfit::aConstantIsTheMean()
{
    QCOMPARE(polyfit({5, -3, 8}, {1, 2, 6}, 0), QVector<double>{3.0});
}

void TestPolyfit::wellConditionedFitMatchesTheReference()
{
    QVector<double> x;
    QVector<double> y;
    makeResponse(201, x, y);
    const QVector<double> found = polyfit(x, y, 5);
    const std::vector<Wide> expected = referenceFit(x, y, 5);
    for (int j = 0; j <= 5; ++j) {
        // The system's condition of some thousands costs four of sixteen digits.
        const Wide error = std::fabs(found.at(j) - expected[static_cast<std::size_t>(j)]);
        QVERIFY2(error < 1e-11L, qPrintable(QString::number(double(error))));
    }
}

void TestPolyfit::badlyConditionedFitFollowsTheReference()
{
    // At degree 20 single coefficients are lost in the system's condition of 1e15, but the
    // curve that they make together is not.
    QVector<double> x;
    QVector<double> y;
    makeResponse(1001, x, y);
    const QVector<double> found = polyfit(x, y, 20);
    const std::vector<Wide> expected = referenceFit(x, y, 20);
    for (const double at : x) {
        const Wide error = std::fabs(valueAt(found, at) - valueAt(expected, at));
        QVERIFY2(error < 1e-6L, qPrintable(QString::number(double(error))));
    }
}

void TestPolyfit::sumsAreThoseOfTheWholeMatrices()
{
    QVector<double> x;
    QVector<double> y;
    makeResponse(301, x, y);
    const quint32 n = 21;
    Matrix design(301, n);
    Matrix values(301, 1);
    for (quint32 i = 0; i < 301; ++i) {
        double power = 1.0;
        for (quint32 j = 0; j < n; ++j) {
            design.at(i, j) = power;
            power *= x.at(int(i));
        }
        values.at(i, 0) = y.at(int(i));
    }
    const Matrix turned = design.transposed();
    GivensQR qr;
    qr.decompose(turned.multiply(design));
    QCOMPARE(polyfit(x, y, 20), qr.solve(turned.multiply(values)).data); // to the bit
}

void TestPolyfit::tooFewPointsGiveNoNumbersAndNoException()
{
    const QVector<double> found = polyfit({1}, {4}, 20);
    QCOMPARE(found.size(), 21);
    for (const double coefficient : found) {
        QVERIFY(!std::isfinite(coefficient));
    }
    // Two distinct places for three coefficients.
    const QVector<double> undetermined = polyfit({0, 1, 1, 0}, {1, 2, 2, 1}, 2);
    QCOMPARE(undetermined.size(), 3);
    for (const double coefficient : undetermined) {
        QVERIFY(!std::isfinite(coefficient));
    }
}

void TestPolyfit::unequalSizesAreRefused()
{
    try {
        polyfit({1, 2}, {1}, 1);
        QFAIL("no exception");
    } catch (const std::invalid_argument& exception) {
        QCOMPARE(exception.what(), "X and Y vector sizes do not match");
    }
}

void TestPolyfit::emptyVectorsAreRefused()
{
    try {
        polyfit({}, {}, 20);
        QFAIL("no exception");
    } catch (const std::range_error& exception) {
        QCOMPARE(exception.what(), "invalid Matrix size");
    }
}

void TestPolyfit::aDegreeBeyondMemoryIsRefused()
{
    QVERIFY_EXCEPTION_THROWN(polyfit({1}, {1}, 1U << 20), std::bad_alloc);
    QVERIFY_EXCEPTION_THROWN(polyfit({1}, {1}, 0xFFFFFFFFU), std::range_error); // 0 coefficients
}

void TestPolyfit::anAbandonedFitGivesNothing()
{
    std::atomic<bool> abandoned{false};
    QCOMPARE(polyfit({5, -3, 8}, {1, 2, 6}, 0, &abandoned), QVector<double>{3.0});
    abandoned = true;
    QVERIFY(polyfit({5, -3, 8}, {1, 2, 6}, 0, &abandoned).isEmpty());
}

QTEST_APPLESS_MAIN(TestPolyfit)
#include "test_polyfit.moc"
