#include "remote/visa_function_table.h"

#include "remote/ko_remote_exception.h"

#include <QDebug>
#include <QLibrary>
#ifdef Q_OS_WIN
#include <QSettings>
#endif

#include <array>

namespace {

struct NamedEntry
{
    const char* name;
    bool (*resolve)(VisaFunctionTable& table, QLibrary& library, const char* name);
};

template <auto Member>
bool resolveMember(VisaFunctionTable& table, QLibrary& library, const char* name)
{
    using Function = std::remove_reference_t<decltype(table.*Member)>;
    table.*Member = reinterpret_cast<Function>(library.resolve(name));
    return table.*Member != nullptr;
}

using Table = VisaFunctionTable;

const std::array<NamedEntry, 20> namedEntries = {{
    {"viOpenDefaultRM", resolveMember<&Table::viOpenDefaultRM>},
    {"viFindRsrc", resolveMember<&Table::viFindRsrc>},
    {"viFindNext", resolveMember<&Table::viFindNext>},
    {"viStatusDesc", resolveMember<&Table::viStatusDesc>},
    {"viOpen", resolveMember<&Table::viOpen>},
    {"viWrite", resolveMember<&Table::viWrite>},
    {"viRead", resolveMember<&Table::viRead>},
    {"viQueryf", resolveMember<&Table::viQueryf>},
    {"viQueryf", resolveMember<&Table::viQueryfSecond>},
    {"viQueryf", resolveMember<&Table::viQueryfThird>},
    {"viPrintf", resolveMember<&Table::viPrintf>},
    {"viScanf", resolveMember<&Table::viScanf>},
    {"viReadToFile", resolveMember<&Table::viReadToFile>},
    {"viClear", resolveMember<&Table::viClear>},
    {"viClose", resolveMember<&Table::viClose>},
    {"viSetAttribute", resolveMember<&Table::viSetAttribute>},
    {"viGetAttribute", resolveMember<&Table::viGetAttribute>},
    {"viSetBuf", resolveMember<&Table::viSetBuf>},
    {"viReadSTB", resolveMember<&Table::viReadSTB>},
    {"viGpibControlREN", resolveMember<&Table::viGpibControlREN>},
}};

// The library's name on Windows first; elsewhere it is installed as libvisa.so or, without
// the development link, as libvisa.so.0.
bool loadLibrary(QLibrary& library)
{
    library.setFileName(QStringLiteral("visa64"));
    if (library.load()) {
        return true;
    }
#ifdef Q_OS_WIN
    return false;
#else
    library.setFileName(QStringLiteral("visa"));
    if (library.load()) {
        return true;
    }
    library.setFileNameAndVersion(QStringLiteral("visa"), 0);
    return library.load();
#endif
}

#ifdef Q_OS_WIN
std::optional<QString> platformRegistryText(const char* key, const char* name)
{
    const QSettings settings(QStringLiteral("HKEY_LOCAL_MACHINE\\") + QLatin1String(key),
                             QSettings::NativeFormat);
    const QVariant value = settings.value(QLatin1String(name));
    return value.isValid() ? std::make_optional(value.toString()) : std::nullopt;
}
#else
std::optional<QString> platformRegistryText(const char*, const char*)
{
    return std::nullopt;
}
#endif

} // namespace

bool VisaFunctionTable::load()
{
    // Going out of scope does not unload: the pointers stay valid for the whole process.
    QLibrary library;
    if (!loadLibrary(library)) {
        return false;
    }
    qDebug("VISA loaded");
    for (const NamedEntry& entry : namedEntries) {
        if (!entry.resolve(*this, library, entry.name)) {
            return false;
        }
    }
    return true;
}

void VisaFunctionTable::requireVisa()
{
    if (!load()) {
        throwRemoteException(QStringLiteral("Could not load VISA"));
    }
}

ViStatus VisaFunctionTable::koOpenDefaultRM(ViSession* resourceManager) const
{
    return viOpenDefaultRM(resourceManager);
}

ViStatus VisaFunctionTable::koOpen(ViSession resourceManager, const QString& resource, quint32 mode,
                                   quint32 timeoutMs, ViSession* session) const
{
    return viOpen(resourceManager, resource.toLocal8Bit().constData(), mode, timeoutMs, session);
}

ViStatus VisaFunctionTable::koClose(ViSession session) const
{
    return viClose(session);
}

ViStatus VisaFunctionTable::koSetAttribute(ViSession session, ViAttr attribute,
                                           ViAttrState value) const
{
    return viSetAttribute(session, attribute, value);
}

ViStatus VisaFunctionTable::koGetAttribute(ViSession session, ViAttr attribute, void* place) const
{
    return viGetAttribute(session, attribute, place);
}

ViStatus VisaFunctionTable::koSetBuf(ViSession session, quint16 mask, quint32 size) const
{
    return viSetBuf(session, mask, size);
}

ViStatus VisaFunctionTable::koGpibControlREN(ViSession session, quint16 mode) const
{
    return viGpibControlREN(session, mode);
}

ViStatus VisaFunctionTable::sendAndRead(ViSession session, const QString& text,
                                        QString* answer) const
{
    constexpr quint32 answerSize = 20000;
    // One byte more than the library may fill, so that the text always ends inside.
    std::array<unsigned char, answerSize + 1> buffer{};

    // Deliberate: the count is that of the characters, not of the bytes. SCPI is plain
    // text, where both agree; the padding keeps the library inside the bytes otherwise.
    const auto count = static_cast<quint32>(text.length());
    QByteArray bytes = text.toLocal8Bit();
    bytes.append(qMax(0, text.length() - bytes.size()), '\0');
    const ViStatus written =
        viWrite(session, reinterpret_cast<const unsigned char*>(bytes.constData()), count, nullptr);
    if (written != visaSuccess) {
        return written;
    }
    const ViStatus read = viRead(session, buffer.data(), answerSize, nullptr);
    if (read != visaSuccess) {
        return read;
    }
    *answer = QString::fromLocal8Bit(reinterpret_cast<const char*>(buffer.data()), -1);
    return visaSuccess;
}

bool visaAvailable()
{
    VisaFunctionTable table;
    try {
        table.requireVisa();
    } catch (KORemoteException* failure) {
        takeMessage(failure);
        return false;
    }
    return table.load();
}

QString vxipnpFrameworkPath(const RegistryText& registryText)
{
    const char key[] = R"(SOFTWARE\VXIPNP_Alliance\VXIPNP\CurrentVersion)";
    for (const char* name : {"FRAMEWORK_PATH", "FrameworkPath"}) {
        if (const std::optional<QString> path = registryText(key, name)) {
            return *path + QLatin1String("bin");
        }
    }
    return QStringLiteral("---");
}

QString vxipnpFrameworkPath()
{
    return vxipnpFrameworkPath(platformRegistryText);
}
