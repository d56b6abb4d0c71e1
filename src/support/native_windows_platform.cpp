#include "support/native_windows_platform.h"

#include <windows.h>

namespace {

HKEY keyOf(WindowsPlatform::RegistryRoot root)
{
    return root == WindowsPlatform::RegistryRoot::localMachine ? HKEY_LOCAL_MACHINE
                                                               : HKEY_CURRENT_USER;
}

// GetSystemDirectoryA and its like: they give the length, or the size they would need.
std::string directory(UINT(WINAPI* ask)(LPSTR, UINT))
{
    char buffer[MAX_PATH];
    const UINT length = ask(buffer, MAX_PATH);
    return length < MAX_PATH ? std::string(buffer, length) : std::string();
}

} // namespace

std::optional<std::string> NativeWindowsPlatform::registryString(RegistryRoot root,
                                                                 const std::string& key,
                                                                 const std::string& name) const
{
    DWORD size = 0; // in bytes, with the terminating zero
    if (RegGetValueA(keyOf(root), key.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, nullptr,
                     &size) != ERROR_SUCCESS) {
        return {};
    }
    std::string text(size, '\0');
    if (RegGetValueA(keyOf(root), key.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, text.data(),
                     &size) != ERROR_SUCCESS) {
        return {};
    }
    return std::string(text.c_str());
}

std::optional<std::uint32_t> NativeWindowsPlatform::registryNumber(RegistryRoot root,
                                                                   const std::string& key,
                                                                   const std::string& name) const
{
    DWORD number = 0;
    DWORD size = sizeof number;
    if (RegGetValueA(keyOf(root), key.c_str(), name.c_str(), RRF_RT_REG_DWORD, nullptr, &number,
                     &size) != ERROR_SUCCESS) {
        return {};
    }
    return number;
}

std::string NativeWindowsPlatform::versionResource(const std::string& path) const
{
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &ignored);
    std::string resource(size, '\0');
    if (size == 0 || GetFileVersionInfoA(path.c_str(), 0, size, resource.data()) == 0) {
        return {};
    }
    return resource;
}

std::optional<std::string> NativeWindowsPlatform::versionValue(const std::string& resource,
                                                               const std::string& name) const
{
    void* value = nullptr;
    UINT size = 0;
    if (VerQueryValueA(resource.data(), name.c_str(), &value, &size) == 0 || value == nullptr) {
        return {};
    }
    return std::string(static_cast<const char*>(value), size);
}

std::vector<std::string> NativeWindowsPlatform::namesMatching(const std::string& pattern) const
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(found.cFileName);
    } while (FindNextFileA(search, &found) != 0);
    FindClose(search);
    return names;
}

std::string NativeWindowsPlatform::systemDirectory() const
{
    return directory(GetSystemDirectoryA);
}

std::string NativeWindowsPlatform::windowsDirectory() const
{
    return directory(GetWindowsDirectoryA);
}

WindowsPlatform::Administrator NativeWindowsPlatform::administrator() const
{
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID group = nullptr;
    if (AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                 DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &group) == 0) {
        return Administrator::unknown;
    }
    BOOL member = FALSE;
    const bool known = CheckTokenMembership(nullptr, group, &member) != 0;
    FreeSid(group);
    return known && member != FALSE ? Administrator::yes : Administrator::no;
}
