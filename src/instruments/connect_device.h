// What the three instruments share of bringing a device up and setting it, as parts of a
// conversation over its link. A failure ends in the device message; nothing throws.
#pragma once

#include "instruments/create_interface.h"
#include "instruments/instrument.h"
#include "remote/instrument_commands.h"

// Connects the device anew: drops the former connection, makes a transport and, by
// makeCommands(transport), the command object around it, opens it, asks "*IDN?".
template <class MakeCommands>
void connectDevice(const Instrument& instrument, MakeCommands makeCommands)
{
    InstrumentLink& link = *instrument.link();
    failQuietly(link, [&] {
        if (const auto former = link.remote()) {
            former->closeInterface();
            link.setRemote(nullptr);
        }
        const auto commands = makeCommands(createInterface(instrument));
        link.setRemote(commands);
        commands->openInterface();
        link.setDeviceMessage(commands->identity());
        commands->goToLocal();
        link.setInitialized();
    });
}

// Sends the settings by sendSettings(commands) over the connection, or over a new one where there
// is none, and asks "*IDN?". Deliberate: a device that failed before is tried again over the same
// connection.
template <class Device, class SendSettings>
void configureDevice(const Device& device, SendSettings sendSettings)
{
    if (!device.commands()) {
        device.init();
    }
    const auto commands = device.commands();
    if (!commands) {
        return; // the device message tells why
    }
    failQuietly(*device.link(), [&] {
        sendSettings(*commands);
        device.link()->setDeviceMessage(commands->identity());
        commands->goToLocal();
    });
}
