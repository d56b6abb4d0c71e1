// What the transports over a network share: a numeric address. Text that is no numeric
// address gives a null address, whose text is empty; no name is ever looked up.
#pragma once

#include <QHostAddress>

class LANInterface
{
public:
    virtual ~LANInterface() = default;

    LANInterface(const LANInterface&) = delete;
    LANInterface& operator=(const LANInterface&) = delete;

protected:
    explicit LANInterface(const QString& text) : address(text) {}

    const QHostAddress address;
};
