// The decomposition: rotations worked by hand, one for each case of the rule, and the two
// properties that any decomposition has.
#include "fit/givens_qr.h"

#include <QtTest>

#include <cmath>
#include <stdexcept>

namespace {

Matrix matrix(quint32 rows, quint32 columns, const QVector<double>& data)
{
    Matrix result(rows, columns);
    result.data = data;
    return result;
}

// A few roundings of numbers around 1 to 10.
bool isNear(const Matrix& found, const Matrix& expected)
{
    if (found.rows != expected.rows || found.columns != expected.columns) {
        return false;
    }
    for (int i = 0; i < found.data.size(); ++i) {
        if (!(std::fabs(found.data.at(i) - expected.data.at(i)) < 1e-13)) {
            qWarning() << i << found.data << expected.data;
            return false;
        }
    }
    return true;
}

Matrix identity(quint32 size)
{
    Matrix result(size, size);
    for (quint32 i = 0; i < size; ++i) {
        result.at(i, i) = 1.0;
    }
    return result;
}

} // namespace

class TestGivensQR : public QObject
{
    Q_OBJECT

private slots:
    void eachCaseOfTheRotationIsTheHandWorkedOne_data();
    void eachCaseOfTheRotationIsTheHandWorkedOne();
    void theRotationIsThatOfTheLastStep();
    void factorsOfAnyShapeMultiplyToTheInput_data();
    void factorsOfAnyShapeMultiplyToTheInput();
    void aSingleElementIsLeftAlone();
    void solutionIsTheHandWorkedOne();
    void tallSystemGivesTheLeastSquares();
    void singularSystemGivesNoNumbersAndNoException();
    void rightSideOfAnotherSizeIsRefused();
};

void TestGivensQR::eachCaseOfTheRotationIsTheHandWorkedOne_data()
{
    QTest::addColumn<QVector<double>>("input"); // 2 x 2
    QTest::addColumn<QVector<double>>("r");
    QTest::addColumn<QVector<double>>("q");
    using V = QVector<double>;
    QTest::newRow("clear the larger") << V{3, 1, 4, 2} << V{5, 2.2, 0, 0.4} << V{.6, -.8, .8, .6};
    QTest::newRow("clear the smaller") << V{4, 1, 3, 2} << V{5, 2, 0, 1} << V{.8, -.6, .6, .8};
    QTest::newRow("zero below positive") << V{2, 1, 0, 3} << V{2, 1, 0, 3} << V{1, 0, 0, 1};
    QTest::newRow("zero below negative") << V{-2, 1, 0, 3} << V{2, -1, 0, -3} << V{-1, 0, 0, -1};
    QTest::newRow("zero below zero") << V{0, 1, 0, 3} << V{0, 1, 0, 3} << V{1, 0, 0, 1};
    QTest::newRow("positive below zero") << V{0, 1, 2, 3} << V{2, 3, 0, -1} << V{0, -1, 1, 0};
    QTest::newRow("negative below zero") << V{0, 1, -2, 3} << V{2, -3, 0, 1} << V{0, 1, -1, 0};
    // 1/t is -2: c = 2/sqrt(5), s = 1/sqrt(5), the diagonal keeps its sign.
    const double h = 1.0 / std::sqrt(5.0);
    QTest::newRow("equal signs lost")
        << V{2, 0, -1, 0} << V{5 * h, 0, 0, 0} << V{2 * h, h, -h, 2 * h};
    // Clearing a larger negative element turns the diagonal negative.
    QTest::newRow("larger negative")
        << V{1, 0, -2, 0} << V{-5 * h, 0, 0, 0} << V{-h, -2 * h, 2 * h, -h};
}

void TestGivensQR::eachCaseOfTheRotationIsTheHandWorkedOne()
{
    QFETCH(QVector<double>, input);
    QFETCH(QVector<double>, r);
    QFETCH(QVector<double>, q);
    GivensQR qr;
    qr.decompose(matrix(2, 2, input));
    QVERIFY(isNear(qr.r, matrix(2, 2, r)));
    QVERIFY(isNear(qr.q, matrix(2, 2, q)));
}

// Turned by (c, -s; s, c), the column (3, 4) becomes (5, 0).
void TestGivensQR::theRotationIsThatOfTheLastStep()
{
    GivensQR qr;
    QVERIFY(isNear(qr.rotation, Matrix(2, 2)));
    qr.decompose(matrix(2, 2, {3, 1, 4, 2}));
    QVERIFY(isNear(qr.rotation, matrix(2, 2, {.6, .8, -.8, .6})));
    QVERIFY(isNear(qr.rotation.multiply(matrix(2, 1, {3, 4})), matrix(2, 1, {5, 0})));
}

void TestGivensQR::factorsOfAnyShapeMultiplyToTheInput_data()
{
    QTest::addColumn<quint32>("rows");
    QTest::addColumn<quint32>("columns");
    QTest::newRow("square") << 4U << 4U;
    QTest::newRow("tall") << 5U << 2U;
    QTest::newRow("wide") << 2U << 5U;
    QTest::newRow("one column") << 4U << 1U;
    QTest::newRow("one row") << 1U << 4U;
}

void TestGivensQR::factorsOfAnyShapeMultiplyToTheInput()
{
    QFETCH(quint32, rows);
    QFETCH(quint32, columns);
    Matrix input(rows, columns);
    for (int i = 0; i < input.data.size(); ++i) {
        input.data[i] = (i * 7 + 3) % 11 - 5;
    }
    GivensQR qr;
    qr.decompose(input);
    QVERIFY(isNear(qr.q.multiply(qr.r), input));
    QVERIFY(isNear(qr.q.multiply(qr.q.transposed()), identity(rows)));
    for (quint32 row = 0; row < rows; ++row) {
        for (quint32 column = 0; column < qMin(row, columns); ++column) {
            QVERIFY(std::fabs(qr.r.at(row, column)) < 1e-13);
        }
    }
}

void TestGivensQR::aSingleElementIsLeftAlone()
{
    GivensQR qr;
    qr.decompose(matrix(1, 1, {-3}));
    QCOMPARE(qr.q.data, QVector<double>{1.0});
    QCOMPARE(qr.r.data, QVector<double>{-3.0});
}

void TestGivensQR::solutionIsTheHandWorkedOne()
{
    // 3x + y = 5, 4x + 2y = 8
    GivensQR qr;
    qr.decompose(matrix(2, 2, {3, 1, 4, 2}));
    QVERIFY(isNear(qr.solve(matrix(2, 1, {5, 8})), matrix(1, 2, {1, 2})));
}

void TestGivensQR::tallSystemGivesTheLeastSquares()
{
    // The mean is the constant that lies closest to 1, 2 and 6.
    GivensQR qr;
    qr.decompose(matrix(3, 1, {1, 1, 1}));
    QVERIFY(isNear(qr.solve(matrix(3, 1, {1, 2, 6})), matrix(1, 1, {3})));
}

void TestGivensQR::singularSystemGivesNoNumbersAndNoException()
{
    GivensQR qr;
    qr.decompose(matrix(2, 2, {1, 1, 1, 1}));
    const Matrix x = qr.solve(matrix(2, 1, {1, 2}));
    QVERIFY(!std::isfinite(x.at(0, 0)));
    QVERIFY(!std::isfinite(x.at(0, 1)));
}

void TestGivensQR::rightSideOfAnotherSizeIsRefused()
{
    GivensQR qr;
    qr.decompose(matrix(2, 2, {3, 1, 4, 2}));
    QVERIFY_EXCEPTION_THROWN((void)qr.solve(Matrix(3, 1)), std::domain_error);
}

QTEST_APPLESS_MAIN(TestGivensQR)
#include "test_givens_qr.moc"
