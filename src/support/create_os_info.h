// Chooses the source of facts for the platform that the program was built for.
#pragma once

#include "support/os_info.h"

#include <memory>

std::unique_ptr<OSInfo> createOSInfo();
