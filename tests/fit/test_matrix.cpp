// The matrix: its elements, its products with hand-worked numbers, and what it refuses.
#include "fit/matrix.h"

#include <QtTest>

#include <limits>
#include <new>
#include <stdexcept>

namespace {

Matrix matrix(quint32 rows, quint32 columns, const QVector<double>& data)
{
    Matrix result(rows, columns);
    result.data = data;
    return result;
}

// The text of the exception that the call ends with; empty if there is none of this type.
template <typename Exception, typename Call> QString textOf(Call call)
{
    try {
        call();
    } catch (const Exception& exception) {
        return QString::fromLatin1(exception.what());
    }
    return {};
}

} // namespace

class TestMatrix : public QObject
{
    Q_OBJECT

private slots:
    void aNewMatrixIsZero();
    void elementsLieRowAfterRow();
    void aSizeOfZeroIsRefused();
    void aSizeBeyondAVectorIsRefused();
    void elementsOutsideAreRefused();
    void productIsTheHandWorkedOne();
    void productAddsInAscendingOrder();
    void unmatchedFactorsAreRefused();
    void transposingSwapsRowsAndColumns();
};

void TestMatrix::aNewMatrixIsZero()
{
    const Matrix zeros(2, 3);
    QCOMPARE(zeros.rows, 2U);
    QCOMPARE(zeros.columns, 3U);
    QCOMPARE(zeros.data, QVector<double>(6, 0.0));
}

void TestMatrix::elementsLieRowAfterRow()
{
    Matrix numbers = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    QCOMPARE(numbers.at(0, 2), 3.0);
    QCOMPARE(numbers.at(1, 0), 4.0);
    numbers.at(1, 2) = 7.0;
    QCOMPARE(numbers.data.last(), 7.0);
}

void TestMatrix::aSizeOfZeroIsRefused()
{
    const QString text = QStringLiteral("invalid Matrix size");
    QCOMPARE(textOf<std::range_error>([] { Matrix(0, 3); }), text);
    QCOMPARE(textOf<std::range_error>([] { Matrix(3, 0); }), text);
}

void TestMatrix::aSizeBeyondAVectorIsRefused()
{
    const quint32 most = std::numeric_limits<quint32>::max();
    QVERIFY_EXCEPTION_THROWN(Matrix(most, most), std::bad_alloc);
    QVERIFY_EXCEPTION_THROWN(Matrix(65536, 65537), std::bad_alloc); // 2^16 modulo 2^32
}

void TestMatrix::elementsOutsideAreRefused()
{
    const QString text = QStringLiteral("position out of range");
    Matrix numbers(2, 3);
    const Matrix& constant = numbers;
    QCOMPARE(textOf<std::out_of_range>([&] { (void)numbers.at(2, 0); }), text);
    QCOMPARE(textOf<std::out_of_range>([&] { (void)numbers.at(0, 3); }), text);
    QCOMPARE(textOf<std::out_of_range>([&] { (void)constant.at(2, 0); }), text);
    QCOMPARE(textOf<std::out_of_range>([&] { (void)constant.at(0, 3); }), text);
}

void TestMatrix::productIsTheHandWorkedOne()
{
    const Matrix product = matrix(2, 3, {1, 2, 3, 4, 5, 6}).multiply(matrix(3, 1, {7, 8, 9}));
    QCOMPARE(product.rows, 2U);
    QCOMPARE(product.columns, 1U);
    QCOMPARE(product.data, QVector<double>({50, 122}));
    const Matrix square = matrix(2, 1, {2, 3}).multiply(matrix(1, 2, {5, 7}));
    QCOMPARE(square.data, QVector<double>({10, 14, 15, 21}));
}

void TestMatrix::productAddsInAscendingOrder()
{
    // Ascending the one is lost beside 1e16; in any other order it would be kept.
    const Matrix product = matrix(1, 3, {1, 1, 1}).multiply(matrix(3, 1, {1, 1e16, -1e16}));
    QCOMPARE(product.data.first(), 0.0);
}

void TestMatrix::unmatchedFactorsAreRefused()
{
    const Matrix numbers(2, 3);
    QCOMPARE(textOf<std::domain_error>([&] { (void)numbers.multiply(numbers); }),
             QStringLiteral("Matrix dimensions are not multiplicable"));
}

void TestMatrix::transposingSwapsRowsAndColumns()
{
    const Matrix turned = matrix(2, 3, {1, 2, 3, 4, 5, 6}).transposed();
    QCOMPARE(turned.rows, 3U);
    QCOMPARE(turned.columns, 2U);
    QCOMPARE(turned.data, QVector<double>({1, 4, 2, 5, 3, 6}));
}

QTEST_APPLESS_MAIN(TestMatrix)
#include "test_matrix.moc"
