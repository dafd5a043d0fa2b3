#pragma once
#include "platform/services/Dialogs.h"

#include <algorithm>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace selfreport {

/// Keeps what boxes would have said, for programs without a display and for tests.
class RecordingDialogs : public Dialogs {
public:
    struct Said {
        Icon icon;
        std::string title;
        std::string text;
        friend bool operator==(const Said&, const Said&) = default;
    };

    void message(Icon icon, std::string_view title, std::string_view text) override
    {
        said.push_back({icon, std::string(title), std::string(text)});
    }
    bool ask(Icon icon, std::string_view title, std::string_view text) override
    {
        message(icon, title, text);
        return answer;
    }
    std::optional<std::size_t> choose(Icon icon, std::string_view title, std::string_view text,
                                      const std::vector<std::string_view>& choices) override
    {
        message(icon, title, text);
        offered.emplace_back(choices.begin(), choices.end());
        if (chosen.empty())
            return {};
        const std::string wanted = std::exchange(chosen.front(), {});
        chosen.pop_front();
        const auto found = std::ranges::find(choices, wanted);
        return found == choices.end() ? std::nullopt : std::optional<std::size_t>(found - choices.begin());
    }

    std::vector<Said> said;
    bool answer = false;                           ///< to every question
    std::vector<std::vector<std::string>> offered; ///< by each choice, without "取消"
    std::deque<std::string> chosen; ///< a button for each choice; then, or if it has none such, "取消"
};

} // namespace selfreport
