// Errors of an instrument as "SYST:ERR?" tells them, oldest first.
#pragma once

#include <QByteArray>

#include <deque>

enum class ScpiError {
    None = 0,
    DataType = -104,
    ParameterNotAllowed = -108,
    MissingParameter = -109,
    UndefinedHeader = -113,
    SettingsConflict = -221,
    OutOfRange = -222,
    IllegalValue = -224,
    HardwareMissing = -241,
    QueueOverflow = -350,
    InputOverrun = -363,
};

// The error as the queue holds it: number,"text;context".
// context: what the instrument was told; shortened, its unprintable bytes shown as dots.
QByteArray errorEntry(ScpiError error, const QByteArray& context);

// Keeps a bounded number of errors; the last place then says that some were lost.
class ScpiErrorQueue
{
public:
    void add(ScpiError error, const QByteArray& context);
    void clear() { entries.clear(); }
    bool isEmpty() const { return entries.empty(); }

    // Takes the oldest error as "number,"text""; 0,"No error" when there is none.
    QByteArray takeOldest();

    static constexpr std::size_t capacity = 30;

private:
    std::deque<QByteArray> entries;
};

// Bytes from outside as short printable text.
QByteArray printable(const QByteArray& bytes);
