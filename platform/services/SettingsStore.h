#pragma once
#include "platform/services/InUse.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace selfreport {

/// The per-user settings of the suite (application "QnCW"), read only. Texts are UTF-8.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    /// "" for a key that is not there.
    virtual std::string value(std::string_view group, std::string_view key) const = 0;

    /// What is in use without a replacement: at first empty settings.
    static SettingsStore*& usual();
};

/// Settings that live in memory.
class MemorySettings : public SettingsStore {
public:
    void set(std::string group, std::string key, std::string value)
    {
        m_values[{std::move(group), std::move(key)}] = std::move(value);
    }
    std::string value(std::string_view group, std::string_view key) const override
    {
        const auto found = m_values.find({std::string(group), std::string(key)});
        return found == m_values.end() ? std::string() : found->second;
    }

private:
    std::map<std::pair<std::string, std::string>, std::string> m_values;
};

/// The settings in use.
SettingsStore& settingsStore();

using SettingsInUse = InUse<SettingsStore>;

} // namespace selfreport
