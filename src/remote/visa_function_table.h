// The functions of a VISA library that was found at run time, or none. The program is never
// linked against VISA: that no library is there is an ordinary condition.
//
// Every transport over VISA loads a table of its own, so nothing is shared between threads.
#pragma once

#include "remote/visa_types.h"

#include <QString>

#include <functional>
#include <optional>

struct VisaFunctionTable
{
    using Queryf = ViStatus (*)(ViSession, const char*, const char*, ...);
    using Printf = ViStatus (*)(ViSession, const char*, ...);

    // In the order in which the names are looked up.
    ViStatus (*viOpenDefaultRM)(ViSession*) = nullptr;
    ViStatus (*viFindRsrc)(ViSession, const char*, ViFindList*, quint32*, char*) = nullptr;
    ViStatus (*viFindNext)(ViFindList, char*) = nullptr;
    ViStatus (*viStatusDesc)(ViSession, ViStatus, char*) = nullptr;
    ViStatus (*viOpen)(ViSession, const char*, quint32, quint32, ViSession*) = nullptr;
    ViStatus (*viWrite)(ViSession, const unsigned char*, quint32, quint32*) = nullptr;
    ViStatus (*viRead)(ViSession, unsigned char*, quint32, quint32*) = nullptr;
    Queryf viQueryf = nullptr;
    Queryf viQueryfSecond = nullptr; // the same name, looked up again
    Queryf viQueryfThird = nullptr;  // and again
    Printf viPrintf = nullptr;
    void* unnamed = nullptr; // has no name, is never filled and never read
    Printf viScanf = nullptr;
    ViStatus (*viReadToFile)(ViSession, const char*, quint32, quint32*) = nullptr;
    ViStatus (*viClear)(ViSession) = nullptr;
    ViStatus (*viClose)(ViSession) = nullptr;
    ViStatus (*viSetAttribute)(ViSession, ViAttr, ViAttrState) = nullptr;
    ViStatus (*viGetAttribute)(ViSession, ViAttr, void*) = nullptr;
    ViStatus (*viSetBuf)(ViSession, quint16, quint32) = nullptr;
    ViStatus (*viReadSTB)(ViSession, quint16*) = nullptr;
    ViStatus (*viGpibControlREN)(ViSession, quint16) = nullptr;

    // Fills the table. False without a library, or with one that lacks any of the names,
    // the unused ones included; the table is then filled up to the missing name.
    bool load();

    // load(), or KORemoteException* "Could not load VISA".
    void requireVisa();

    // The calls that the program makes; each needs a loaded table and returns the status.
    ViStatus koOpenDefaultRM(ViSession* resourceManager) const;
    ViStatus koOpen(ViSession resourceManager, const QString& resource, quint32 mode,
                    quint32 timeoutMs, ViSession* session) const;
    ViStatus koClose(ViSession session) const;
    ViStatus koSetAttribute(ViSession session, ViAttr attribute, ViAttrState value) const;
    ViStatus koGetAttribute(ViSession session, ViAttr attribute, void* place) const;
    ViStatus koSetBuf(ViSession session, quint16 mask, quint32 size) const;
    ViStatus koGpibControlREN(ViSession session, quint16 mode) const;

    // Writes the text, reads one message of up to 20,000 bytes into answer. Any status but
    // 0, a warning included, ends the transaction and leaves answer alone.
    ViStatus sendAndRead(ViSession session, const QString& text, QString* answer) const;
};

// Whether a complete VISA library can be loaded.
bool visaAvailable();

// Reads the text of a key below HKEY_LOCAL_MACHINE; without a value where it can't be read.
using RegistryText = std::function<std::optional<QString>(const char* key, const char* name)>;

// Folder of the instrument drivers, as a registry names it: the stored path, which is expected to
// end in a backslash, with "bin" directly behind it, or "---" where there is none.
QString vxipnpFrameworkPath(const RegistryText& registryText);

// The same with the registry of this platform.
QString vxipnpFrameworkPath();
