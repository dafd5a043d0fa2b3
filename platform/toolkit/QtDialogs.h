#pragma once
#include "platform/services/Dialogs.h"

namespace selfreport {

/// The toolkit's message boxes, modal to the active window. Without a running application object with windows
/// nothing is shown, questions are answered with No and choices with "取消".
class QtDialogs : public Dialogs {
public:
    void message(Icon icon, std::string_view title, std::string_view text) override;
    bool ask(Icon icon, std::string_view title, std::string_view text) override;
    std::optional<std::size_t> choose(Icon icon, std::string_view title, std::string_view text,
                                      const std::vector<std::string_view>& choices) override;
};

} // namespace selfreport
