// The four ways to an instrument through VISA; they differ in the resource descriptor and in
// how the front panel is handed back.
#pragma once

#include "remote/ko_visa_interface.h"
#include "remote/lan_interface.h"

class GPIBInterface : public KOVISAInterface
{
public:
    GPIBInterface(quint32 boardNumber, quint16 primaryAddress);

    void goToLocal() override; // by the bus itself; sends no text and cannot fail
    QString resourceString() const override;

private:
    quint32 board;   // 0 or 1
    quint16 address; // primary address
};

class VXIInterface : public LANInterface, public KOVISAInterface
{
public:
    explicit VXIInterface(const QString& ipAddress);
    QString resourceString() const override;
};

class TLNKInterface : public LANInterface, public KOVISAInterface
{
public:
    explicit TLNKInterface(const QString& ipAddress);
    void goToLocal() override; // nothing
    QString resourceString() const override;
};

class HiSLIPInterface : public LANInterface, public KOVISAInterface
{
public:
    explicit HiSLIPInterface(const QString& ipAddress);
    QString resourceString() const override;
};
