// Values of results on their way to JSON and back.
#pragma once

#include "campaign/result_error.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>
#include <optional>

inline QJsonValue numberOf(std::optional<double> number)
{
    return number && std::isfinite(*number) ? QJsonValue(*number) : QJsonValue();
}

inline QJsonValue textOf(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

inline QJsonValue truthOf(std::optional<bool> yes)
{
    return yes ? QJsonValue(*yes) : QJsonValue();
}

template <typename List, typename Convert> QJsonArray arrayOf(const List& list, Convert convert)
{
    QJsonArray array;
    for (const auto& element : list) {
        array.append(convert(element));
    }
    return array;
}

template <typename Map, typename Name, typename Convert>
QJsonObject membersOf(const Map& map, Name name, Convert convert)
{
    QJsonObject object;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        object[name(entry.key())] = convert(entry.value());
    }
    return object;
}

// A member of an object, with its path for messages.
struct Member
{
    QString path;
    QJsonValue value;

    [[noreturn]] void refuse(const char* expected) const
    {
        throw ResultError{QStringLiteral("\"%1\" is no %2").arg(path, QLatin1String(expected))};
    }

    Member operator[](const QString& name) const
    {
        if (!value.isObject()) {
            refuse("object");
        }
        return {path.isEmpty() ? name : path + '.' + name, value.toObject()[name]};
    }
    double number() const
    {
        if (!value.isDouble()) {
            refuse("number");
        }
        return value.toDouble();
    }
    // Far beyond what is measured, and near enough that the axis of a chart still has steps there.
    double decibels() const { return numberWithin(1e5, "number of dB"); }
    double hertz() const { return numberWithin(1e15, "frequency"); }
    int whole() const
    {
        const double found = number();
        if (found != std::floor(found) || std::abs(found) > 2147483647.0) {
            refuse("whole number");
        }
        return static_cast<int>(found);
    }
    qint64 count() const
    {
        constexpr double most = 1LL << 53;
        const double found = number();
        if (!(found >= 0.0 && found <= most) || found != std::floor(found)) {
            refuse("count");
        }
        return static_cast<qint64>(found);
    }
    quint32 seed() const
    {
        const double found = number();
        if (!(found >= 0.0 && found <= 4294967295.0) || found != std::floor(found)) {
            refuse("seed");
        }
        return static_cast<quint32>(found);
    }
    QString text() const
    {
        if (!value.isString()) {
            refuse("text");
        }
        return value.toString();
    }
    bool yes() const
    {
        if (!value.isBool()) {
            refuse("truth value");
        }
        return value.toBool();
    }
    bool isMissing() const { return value.isNull() || value.isUndefined(); }
    std::optional<double> numberOrNone() const
    {
        return isMissing() ? std::nullopt : std::make_optional(number());
    }
    std::optional<double> decibelsOrNone() const
    {
        return isMissing() ? std::nullopt : std::make_optional(decibels());
    }
    // Calls take(element) for each element of a list.
    template <typename Take> void forEachElement(Take take) const
    {
        if (!value.isArray()) {
            refuse("list");
        }
        int index = 0;
        for (const QJsonValue element : value.toArray()) {
            take(Member{QStringLiteral("%1[%2]").arg(path).arg(index++), element});
        }
    }
    // Calls take(name, member) for each member of an object.
    template <typename Take> void forEachMember(Take take) const
    {
        if (!value.isObject()) {
            refuse("object");
        }
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            take(member.key(), Member{path + '.' + member.key(), member.value()});
        }
    }

private:
    double numberWithin(double most, const char* what) const
    {
        const double found = number();
        if (!(std::abs(found) <= most)) {
            refuse(what);
        }
        return found;
    }
};
