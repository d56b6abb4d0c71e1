#include "campaign/recorded_config.h"

#include "setup/config_check.h"
#include "setup/config_file.h"

#include <algorithm>

namespace {

bool isText(const QVector<ConfigKey>& keys, const QString& name)
{
    return std::any_of(keys.begin(), keys.end(), [&name](const ConfigKey& key) {
        return key.name == name && key.kind == ConfigKind::Text;
    });
}

} // namespace

ConfigSections configSectionsOf(const MeasurementSetup& setup)
{
    ConfigSections sections;
    const ConfigText text = parseConfigText(configTextOf(setup));
    for (auto section = text.begin(); section != text.end(); ++section) {
        for (auto key = section->begin(); key != section->end(); ++key) {
            const bool isQuoted = key->startsWith('"');
            sections[section.key()][key.key()] = isQuoted ? key->mid(1, key->size() - 2) : *key;
        }
    }
    return sections;
}

MeasurementSetup setupOf(const ConfigSections& sections)
{
    ConfigText text;
    for (auto section = sections.cbegin(); section != sections.cend(); ++section) {
        const QVector<ConfigKey> keys = configKeys(section.key());
        for (auto key = section->cbegin(); key != section->cend(); ++key) {
            text[section.key()][key.key()] =
                isText(keys, key.key()) ? '"' + key.value() + '"' : key.value();
        }
    }
    return configOf(text);
}
