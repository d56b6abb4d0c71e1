// What the three instruments share of bringing a device up and of handing the outcome on.
#pragma once

#include "instruments/create_interface.h"
#include "instruments/instrument.h"
#include "remote/instrument_commands.h"
#include "remote/ko_remote_exception.h"

// Connects the device anew: drops the former connection, makes a transport and, by
// makeCommands(transport), the command object around it, opens it, asks "*IDN?".
template <class Device, class MakeCommands>
void connectDevice(Device& device, MakeCommands makeCommands)
{
    if (device.commands) {
        device.commands->closeInterface();
        device.commands.reset();
        device.remote.reset();
    }
    device.commands = makeCommands(createInterface(device));
    device.remote = device.commands;
    device.remote->openInterface();
    device.deviceMessage = device.remote->identity();
    device.remote->goToLocal();
    device.initialized = true;
}

// Takes over what init(), setup() or reset() did to a copy of this instrument.
template <class Device> void adoptConnection(Device& record, const Device& copy)
{
    record.deviceMessage = copy.deviceMessage;
    record.initialized = copy.initialized;
    record.commands = copy.commands;
    record.remote = copy.remote;
}
