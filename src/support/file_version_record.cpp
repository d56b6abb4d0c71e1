#include "support/file_version_record.h"

#include "support/windows_platform.h"

#include <QtEndian>

#include <cstdio>

namespace {

struct Text
{
    const char* name;
    QString FileVersionRecord::*member;
};

const Text texts[] = {
    {"Comments", &FileVersionRecord::comments},
    {"CompanyName", &FileVersionRecord::companyName},
    {"FileDescription", &FileVersionRecord::fileDescription},
    {"InternalName", &FileVersionRecord::internalName},
    {"LegalCopyright", &FileVersionRecord::legalCopyright},
    {"LegalTrademarks", &FileVersionRecord::legalTrademarks},
    {"OriginalFileName", &FileVersionRecord::originalFileName},
    {"ProductName", &FileVersionRecord::productName},
    {"PrivateBuild", &FileVersionRecord::privateBuild},
    {"SpecialBuild", &FileVersionRecord::specialBuild},
    {"Label", &FileVersionRecord::label},
};

// Places in the block of fixed numbers: each version is two double words, the upper one first.
constexpr std::size_t fileVersionAt = 8;
constexpr std::size_t productVersionAt = 16;
constexpr std::size_t versionSize = 8;

QString dottedVersion(const std::string& fixedNumbers, std::size_t at)
{
    const auto upper = qFromLittleEndian<quint32>(fixedNumbers.data() + at);
    const auto lower = qFromLittleEndian<quint32>(fixedNumbers.data() + at + 4);
    return QStringLiteral("%1.%2.%3.%4")
        .arg(upper >> 16)
        .arg(upper & 0xFFFF)
        .arg(lower >> 16)
        .arg(lower & 0xFFFF);
}

void readNumbers(FileVersionRecord& record, const std::string& fixedNumbers)
{
    if (fixedNumbers.size() >= productVersionAt + versionSize) {
        record.fileVersion = dottedVersion(fixedNumbers, fileVersionAt);
        record.productVersion = dottedVersion(fixedNumbers, productVersionAt);
    }
}

// The block of texts in the first language: language and code page in hexadecimal.
std::string textBlock(const std::string& translation)
{
    const unsigned language = qFromLittleEndian<quint16>(translation.data());
    const unsigned codePage = qFromLittleEndian<quint16>(translation.data() + 2);
    char digits[9];
    std::snprintf(digits, sizeof digits, "%04X%04X", language, codePage);
    return std::string("\\StringFileInfo\\") + digits + '\\';
}

} // namespace

FileVersionRecord readFileVersion(const WindowsPlatform& platform, const std::string& path)
{
    FileVersionRecord record;
    const std::string resource = platform.versionResource(path);
    if (resource.empty()) {
        return record;
    }
    readNumbers(record, platform.versionValue(resource, "\\").value_or(std::string()));

    const auto translation = platform.versionValue(resource, "\\VarFileInfo\\Translation");
    if (!translation || translation->size() < 4) {
        return record;
    }
    const std::string block = textBlock(*translation);
    for (const Text& text : texts) {
        const auto value = platform.versionValue(resource, block + text.name);
        // The value counts its terminating zero, and c_str ends there.
        record.*text.member = value ? QString::fromLocal8Bit(value->c_str()) : QString();
    }
    return record;
}
