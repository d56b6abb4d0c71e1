#include "simulator/status_model.h"

#include <utility>

namespace {

// Bits of the event status register.
constexpr quint8 operationComplete = 1U << 0;
constexpr quint8 queryError = 1U << 2;
constexpr quint8 deviceError = 1U << 3;
constexpr quint8 executionError = 1U << 4;
constexpr quint8 commandError = 1U << 5;

// Bits of the status byte.
constexpr quint8 errorsQueued = 1U << 2;
constexpr quint8 questionableSummary = 1U << 3;
constexpr quint8 messageIsAvailable = 1U << 4;
constexpr quint8 eventSummary = 1U << 5;
constexpr quint8 serviceRequest = 1U << 6;

// Errors are numbered by the hundred: -1xx command, -2xx execution, -3xx device, -4xx query.
quint8 bitOf(ScpiError error)
{
    switch (static_cast<int>(error) / -100) {
    case 1:
        return commandError;
    case 2:
        return executionError;
    case 3:
        return deviceError;
    case 4:
        return queryError;
    default:
        return 0;
    }
}

} // namespace

void StatusModel::add(ScpiError error, const QByteArray& context)
{
    errors.add(error, context);
    events |= bitOf(error);
}

void StatusModel::askForCompletion(bool underWay)
{
    completionAsked = underWay;
    if (!underWay) {
        events |= operationComplete;
    }
}

void StatusModel::operationsEnded()
{
    if (std::exchange(completionAsked, false)) {
        events |= operationComplete;
    }
}

void StatusModel::clear()
{
    errors.clear();
    events = 0;
    questionable = 0;
    completionAsked = false;
}

quint8 StatusModel::takeEvents()
{
    return std::exchange(events, quint8{0});
}

quint8 StatusModel::takeQuestionable()
{
    return std::exchange(questionable, quint8{0});
}

quint8 StatusModel::statusByte(bool messageAvailable) const
{
    const quint8 summary = static_cast<quint8>((errors.isEmpty() ? 0 : errorsQueued) |
                                               (questionable != 0 ? questionableSummary : 0) |
                                               (messageAvailable ? messageIsAvailable : 0) |
                                               ((events & eventEnable) != 0 ? eventSummary : 0));
    // The request's own bit can't ask for service.
    const bool service = (summary & serviceEnable & ~serviceRequest) != 0;
    return static_cast<quint8>(summary | (service ? serviceRequest : 0));
}
