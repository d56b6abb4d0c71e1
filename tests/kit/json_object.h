// The object that JSON text holds; an empty one for any other text.
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

inline QJsonObject jsonOf(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}
