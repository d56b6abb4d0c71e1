// The running Windows itself, through its ANSI calls. Windows only, free of Qt; needs the
// libraries advapi32 and version.
#pragma once

#include "support/windows_platform.h"

class NativeWindowsPlatform : public WindowsPlatform
{
public:
    std::optional<std::string> registryString(RegistryRoot root, const std::string& key,
                                              const std::string& name) const override;
    std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::string& key,
                                                const std::string& name) const override;
    std::string versionResource(const std::string& path) const override;
    std::optional<std::string> versionValue(const std::string& resource,
                                            const std::string& name) const override;
    std::vector<std::string> namesMatching(const std::string& pattern) const override;
    std::string systemDirectory() const override;
    std::string windowsDirectory() const override;
    Administrator administrator() const override;
};
