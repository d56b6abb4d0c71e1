#pragma once

#include "instruments/analyzer.h"
#include "remote/ko_remote_exception.h"

#include <memory>

// The analyzer's command object, or KORemoteException* when it was never connected.
inline std::shared_ptr<AnalyzerCommands> requireCommands(const Analyzer& analyzer)
{
    std::shared_ptr<AnalyzerCommands> commands = analyzer.commands();
    if (!commands) {
        throwRemoteException(QStringLiteral("Analyzer is not initialized!"));
    }
    return commands;
}
