// The help texts.
#pragma once

#include <QString>

struct Command;

QString helpOfProgram();
QString helpOf(const Command& command);
