// What the version resource of a Windows file tells about it.
#pragma once

#include <QString>

#include <string>

class WindowsPlatform;

struct FileVersionRecord
{
    QString comments;
    QString companyName;
    QString fileDescription;
    QString fileVersion = QStringLiteral("---"); // stays if there is no file or no resource
    QString internalName;
    QString legalCopyright;
    QString legalTrademarks;
    QString originalFileName;
    QString productName;
    QString productVersion;
    QString privateBuild;
    QString specialBuild;
    QString label;
};

// Reads the record of a full path, its texts in the first language of the resource. A name that
// the resource lacks leaves its member empty. Any thread.
FileVersionRecord readFileVersion(const WindowsPlatform& platform, const std::string& path);
