#pragma once
#include "platform/services/InUse.h"

#include <map>
#include <string>
#include <string_view>

namespace selfreport {

/// What the user has chosen for the windows of this module, kept from one session to the next. Nothing that
/// is computed or stored depends on it. Texts are UTF-8.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// "" for what was never chosen.
    virtual std::string value(std::string_view key) const = 0;
    virtual void keep(std::string_view key, std::string_view value) = 0;

    bool isOn(std::string_view key, bool otherwise = false) const
    {
        const std::string kept = value(key);
        return kept.empty() ? otherwise : kept == "1";
    }
    void keepOn(std::string_view key, bool on) { keep(key, on ? "1" : "0"); }

    /// What is in use without a replacement: at first preferences that live as long as the program.
    static Preferences*& usual();
};

/// Preferences that live in memory.
class MemoryPreferences : public Preferences {
public:
    std::string value(std::string_view key) const override
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::string() : found->second;
    }
    void keep(std::string_view key, std::string_view value) override
    {
        m_values.insert_or_assign(std::string(key), std::string(value));
    }

private:
    std::map<std::string, std::string, std::less<>> m_values;
};

/// The preferences in use.
Preferences& preferences();

using PreferencesInUse = InUse<Preferences>;

} // namespace selfreport
