// A Windows machine made up by a test: what its registry, files and directories hold. Everything
// that isn't put in is missing. Remembers which files were looked at.
#pragma once

#include "support/windows_platform.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

struct MadeUpMachine
{
    using Root = WindowsPlatform::RegistryRoot;

    // By key and name, as "key|name".
    std::map<std::pair<Root, std::string>, std::string> texts;
    std::map<std::pair<Root, std::string>, std::uint32_t> numbers;
    // Path -> name in the resource -> bytes.
    std::map<std::string, std::map<std::string, std::string>> resources;
    std::map<std::string, std::vector<std::string>> directories; // by pattern
    WindowsPlatform::Administrator administrator = WindowsPlatform::Administrator::no;
    std::vector<std::string> lookedAt;

    // A file with the version 1.2.3.<last>, American texts in code page 1200.
    void addFile(const std::string& path, char last)
    {
        std::string fixed(52, '\0');
        const char version[] = {2, 0, 1, 0, last, 0, 3, 0}; // each double word: lower half first
        fixed.replace(8, 8, version, 8);
        const char productVersion[] = {8, 0, 9, 0, 6, 0, 7, 0};
        fixed.replace(16, 8, productVersion, 8);
        resources[path]["\\"] = fixed;
        resources[path]["\\VarFileInfo\\Translation"] = std::string("\x09\x04\xB0\x04", 4);
    }

    void addText(const std::string& path, const std::string& name, const std::string& text)
    {
        // Windows counts the terminating zero.
        resources[path]["\\StringFileInfo\\040904B0\\" + name] = text + '\0';
    }
};

class MadeUpWindows : public WindowsPlatform
{
public:
    explicit MadeUpWindows(MadeUpMachine& madeUp) : machine(madeUp) {}

    std::optional<std::string> registryString(RegistryRoot root, const std::string& key,
                                              const std::string& name) const override
    {
        const auto found = machine.texts.find({root, key + '|' + name});
        return found == machine.texts.end() ? std::optional<std::string>() : found->second;
    }

    std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::string& key,
                                                const std::string& name) const override
    {
        const auto found = machine.numbers.find({root, key + '|' + name});
        return found == machine.numbers.end() ? std::optional<std::uint32_t>() : found->second;
    }

    // The path itself stands for the block of bytes.
    std::string versionResource(const std::string& path) const override
    {
        machine.lookedAt.push_back(path);
        return machine.resources.count(path) == 0 ? std::string() : path;
    }

    std::optional<std::string> versionValue(const std::string& resource,
                                            const std::string& name) const override
    {
        const auto& values = machine.resources.at(resource);
        const auto found = values.find(name);
        return found == values.end() ? std::optional<std::string>() : found->second;
    }

    std::vector<std::string> namesMatching(const std::string& pattern) const override
    {
        const auto found = machine.directories.find(pattern);
        return found == machine.directories.end() ? std::vector<std::string>() : found->second;
    }

    std::string systemDirectory() const override { return "C:\\Windows\\system32"; }
    std::string windowsDirectory() const override { return "C:\\Windows"; }
    Administrator administrator() const override { return machine.administrator; }

private:
    MadeUpMachine& machine;
};
