#pragma once
#include "platform/services/SettingsStore.h"

namespace selfreport {

/// The per-user settings file of application "QnCW" (an .ini file in the user's configuration folder). It is
/// read anew for every value, as the host may have written it meanwhile. Needs no application object.
class QtSettings : public SettingsStore {
public:
    std::string value(std::string_view group, std::string_view key) const override;

    /// Keeps a value in that file, as a host does.
    static void write(std::string_view group, std::string_view key, std::string_view value);
};

} // namespace selfreport
