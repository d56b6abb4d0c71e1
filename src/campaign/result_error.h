// Why a file is no result.
#pragma once

#include <QString>

struct ResultError
{
    QString text;
};
