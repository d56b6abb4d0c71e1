// A small dense matrix of doubles, for the fit of a trace. Rows and columns count from 0. Misuse
// throws a standard exception. Any thread.
#pragma once

#include <QVector>

struct Matrix
{
    // All zeros. std::range_error when a size is 0, std::bad_alloc when there is no room.
    Matrix(quint32 rowCount, quint32 columnCount);

    // std::out_of_range when there is no such element.
    double& at(quint32 row, quint32 column);
    const double& at(quint32 row, quint32 column) const;

    // this x other, the products of an element added in ascending order of the inner index.
    // std::domain_error unless columns equals other.rows.
    Matrix multiply(const Matrix& other) const;

    Matrix transposed() const;

    QVector<double> data; // row after row
    quint32 rows;
    quint32 columns;
};
