// What the three instruments share of bringing a device up, setting it and handing the outcome
// on. A failure ends in deviceMessage; nothing throws.
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
    try {
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
    } catch (KORemoteException* failure) {
        device.fail(takeMessage(failure));
    }
}

// Sends the settings over the connection, or over a new one where there is none, and asks
// "*IDN?". Deliberate: a device that failed before is tried again over the same connection.
template <class Device, class SendSettings>
void configureDevice(Device& device, SendSettings sendSettings)
{
    if (!device.commands) {
        device.init();
    }
    if (!device.commands) {
        return; // deviceMessage tells why
    }
    try {
        sendSettings();
        device.deviceMessage = device.commands->identity();
        device.commands->goToLocal();
    } catch (KORemoteException* failure) {
        device.fail(takeMessage(failure));
    }
}

// Takes over what init(), setup() or reset() did to a copy of this instrument: before is the
// copy as it was taken, after as the job left it. What the job did not change stays, and so does
// a connection that was made meanwhile unless the job made one itself.
template <class Device>
void adoptConnection(Device& record, const Device& before, const Device& after)
{
    const bool connectedAnew = after.commands != before.commands;
    const bool saidNothingNew =
        after.deviceMessage == before.deviceMessage && after.initialized == before.initialized;
    if (!connectedAnew && (saidNothingNew || record.commands != after.commands)) {
        return;
    }
    record.deviceMessage = after.deviceMessage;
    record.initialized = after.initialized;
    record.commands = after.commands;
    record.remote = after.remote;
}
