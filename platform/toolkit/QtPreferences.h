#pragma once
#include "platform/services/Preferences.h"

namespace selfreport {

/// A file of this module's own in the user's configuration folder, beside the settings of application "QnCW".
class QtPreferences : public Preferences {
public:
    std::string value(std::string_view key) const override;
    void keep(std::string_view key, std::string_view value) override;
};

} // namespace selfreport
