// The calls of Windows that the support information needs, and no more: each operation is one
// question to the system. What is asked, and what becomes of the answers, stands in
// WindowsOSInfo, so that it can be tested on any platform with a made-up machine.
//
// Free of Qt. Texts are in the ANSI code page of the machine, paths have backslashes.
// Nothing throws; what can't be found is an empty optional, text or list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class WindowsPlatform
{
public:
    enum class RegistryRoot { localMachine, currentUser };
    enum class Administrator { no, yes, unknown }; // unknown: the group's identifier can't be made

    virtual ~WindowsPlatform() = default;

    // An empty name asks for the default value of the key.
    virtual std::optional<std::string> registryString(RegistryRoot root, const std::string& key,
                                                      const std::string& name) const = 0;
    virtual std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::string& key,
                                                        const std::string& name) const = 0;

    // The version resource of a file as an opaque block of bytes.
    virtual std::string versionResource(const std::string& path) const = 0;

    // The bytes that the resource holds under a name such as "\" or "\VarFileInfo\Translation".
    virtual std::optional<std::string> versionValue(const std::string& resource,
                                                    const std::string& name) const = 0;

    // The names, without the directory, of what matches a path with wildcards, in the order in
    // which the system gives them.
    virtual std::vector<std::string> namesMatching(const std::string& pattern) const = 0;

    // Both without a backslash at the end.
    virtual std::string systemDirectory() const = 0;
    virtual std::string windowsDirectory() const = 0;

    virtual Administrator administrator() const = 0;
};
