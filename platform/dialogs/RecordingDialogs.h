#pragma once
#include "platform/dialogs/Dialogs.h"

#include <string>
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

    std::vector<Said> said;
    bool answer = false; ///< to every question
};

} // namespace selfreport
