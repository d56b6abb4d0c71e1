#include "support/create_os_info.h"

#ifdef Q_OS_WIN
#include "support/native_windows_platform.h"
#include "support/windows_os_info.h"

std::unique_ptr<OSInfo> createOSInfo()
{
    return std::make_unique<WindowsOSInfo>(std::make_unique<NativeWindowsPlatform>());
}
#else
#include "support/linux_os_info.h"

std::unique_ptr<OSInfo> createOSInfo()
{
    return std::make_unique<LinuxOSInfo>();
}
#endif
