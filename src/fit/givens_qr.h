// The QR decomposition of a small matrix by Givens rotations, a = q x r, and the solution of a
// linear system with it.
//
// Every rotation is carried out, also for an element that is 0 already, because that fixes the
// sign of the diagonal. There is no pivoting and no check for rank: a singular system gives
// infinities or not-a-number. Any thread.
#pragma once

#include "fit/matrix.h"

struct GivensQR
{
    GivensQR();

    // Fills q, m x m, and r, of the shape m x n of the input.
    void decompose(const Matrix& input);

    // The x with r x = q transposed x b, as one row. b is m x 1, m at least n.
    Matrix solve(const Matrix& b) const;

    Matrix q;        // the product of all rotations, transposed when the decomposition is done
    Matrix r;        // the triangular factor
    Matrix rotation; // the present rotation, 2 x 2

private:
    void setRotation(double toClear, double pivot);
    void rotate(Matrix& matrix, quint32 upper, quint32 lower) const;
};
