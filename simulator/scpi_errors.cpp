#include "simulator/scpi_errors.h"

#include <algorithm>

namespace {

struct ErrorText
{
    ScpiError error;
    const char* text;
};

const ErrorText errorTexts[] = {
    {ScpiError::None, "No error"},
    {ScpiError::DataType, "Data type error"},
    {ScpiError::ParameterNotAllowed, "Parameter not allowed"},
    {ScpiError::MissingParameter, "Missing parameter"},
    {ScpiError::UndefinedHeader, "Undefined header"},
    {ScpiError::SettingsConflict, "Settings conflict"},
    {ScpiError::OutOfRange, "Data out of range"},
    {ScpiError::IllegalValue, "Illegal parameter value"},
    {ScpiError::HardwareMissing, "Hardware missing"},
    {ScpiError::QueueOverflow, "Queue overflow"},
    {ScpiError::InputOverrun, "Input buffer overrun"},
};

} // namespace

QByteArray errorEntry(ScpiError error, const QByteArray& context)
{
    const auto* known = std::find_if(std::begin(errorTexts), std::end(errorTexts),
                                     [error](const ErrorText& row) { return row.error == error; });
    QByteArray text = QByteArray::number(static_cast<int>(error)) + ",\"" + known->text;
    if (!context.isEmpty()) {
        text += ';' + printable(context).replace('"', '\'');
    }
    return text + '"';
}

QByteArray printable(const QByteArray& bytes)
{
    constexpr int longest = 80;
    QByteArray text = bytes.left(longest);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '.');
    return text;
}

void ScpiErrorQueue::add(ScpiError error, const QByteArray& context)
{
    if (entries.size() < capacity) {
        entries.push_back(errorEntry(error, context));
    } else {
        entries.back() = errorEntry(ScpiError::QueueOverflow, {});
    }
}

QByteArray ScpiErrorQueue::takeOldest()
{
    if (entries.empty()) {
        return errorEntry(ScpiError::None, {});
    }
    QByteArray oldest = entries.front();
    entries.pop_front();
    return oldest;
}
