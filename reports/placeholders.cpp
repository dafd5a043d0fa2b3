#include "reports/placeholders.h"

#include "platform/database/session/names.h"
#include "platform/services/SettingsStore.h"

#include <string_view>

namespace selfreport {

namespace {

struct Placeholder {
    std::string_view text, key;
};

/// In the order of their replacement; the keys are those of group "ParamValue".
constexpr Placeholder placeholders[] = {
    {"&Comp", "Value2"},
    {"&operator", "Value3"},
    {"&EndDate", "Value1"},
    {"&PrintDate", "Value4"},
};

std::string replaced(std::string_view text, std::string_view part, std::string_view by)
{
    std::string result;
    while (!text.empty()) {
        if (sameName(text.substr(0, part.size()), part)) {
            result += by;
            text.remove_prefix(part.size());
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

} // namespace

std::string placeholdersFilled(std::string text, const SettingsStore& settings)
{
    for (const Placeholder& placeholder : placeholders)
        text = replaced(text, placeholder.text, settings.value("ParamValue", placeholder.key));
    return text;
}

} // namespace selfreport
