#include "fit/matrix.h"

#include <limits>
#include <new>
#include <stdexcept>

namespace {

int elementCount(quint32 rows, quint32 columns)
{
    if (rows == 0 || columns == 0) {
        throw std::range_error("invalid Matrix size");
    }
    const quint64 count = quint64{rows} * columns;
    if (count > std::numeric_limits<int>::max() / sizeof(double)) {
        throw std::bad_alloc(); // more than a vector holds
    }
    return static_cast<int>(count);
}

int position(const Matrix& matrix, quint32 row, quint32 column)
{
    if (row >= matrix.rows || column >= matrix.columns) {
        throw std::out_of_range("position out of range");
    }
    return static_cast<int>(row * matrix.columns + column);
}

} // namespace

Matrix::Matrix(quint32 rowCount, quint32 columnCount)
    : data(elementCount(rowCount, columnCount), 0.0), rows(rowCount), columns(columnCount)
{
}

double& Matrix::at(quint32 row, quint32 column)
{
    return data[position(*this, row, column)];
}

const double& Matrix::at(quint32 row, quint32 column) const
{
    return data.at(position(*this, row, column));
}

Matrix Matrix::multiply(const Matrix& other) const
{
    if (columns != other.rows) {
        throw std::domain_error("Matrix dimensions are not multiplicable");
    }
    Matrix product(rows, other.columns);
    for (quint32 row = 0; row < rows; ++row) {
        for (quint32 column = 0; column < other.columns; ++column) {
            for (quint32 inner = 0; inner < columns; ++inner) {
                product.at(row, column) += at(row, inner) * other.at(inner, column);
            }
        }
    }
    return product;
}

Matrix Matrix::transposed() const
{
    Matrix result(columns, rows);
    for (quint32 row = 0; row < rows; ++row) {
        for (quint32 column = 0; column < columns; ++column) {
            result.at(column, row) = at(row, column);
        }
    }
    return result;
}
