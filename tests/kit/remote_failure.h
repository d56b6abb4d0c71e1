// The message of the failure that the work throws; "(none)" where it throws none.
#pragma once

#include "remote/ko_remote_exception.h"

template <class Work> QString failureOf(Work work)
{
    try {
        work();
    } catch (KORemoteException* failure) {
        return takeMessage(failure);
    }
    return QStringLiteral("(none)");
}
