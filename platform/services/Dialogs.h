#pragma once
#include "platform/services/InUse.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace selfreport {

enum class Icon { none, information, question, exclamation, critical };

/// Message boxes. Texts are UTF-8.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// Shows a message with an OK button and returns once it is confirmed.
    virtual void message(Icon icon, std::string_view title, std::string_view text) = 0;

    /// Asks with Yes and No buttons. True for Yes.
    virtual bool ask(Icon icon, std::string_view title, std::string_view text) = 0;
    /// … under the question icon.
    bool question(std::string_view title, std::string_view text) { return ask(Icon::question, title, text); }

    /// Asks with buttons of its own and, behind them, "取消", which is the default and what Esc means.
    /// Returns the place of the chosen button, from 0; nothing for "取消".
    virtual std::optional<std::size_t> choose(Icon icon, std::string_view title, std::string_view text,
                                              const std::vector<std::string_view>& choices) = 0;

    /// What is in use without a replacement: at first silent boxes that answer every question with No and
    /// choose nothing.
    static Dialogs*& usual();
};

/// The message boxes in use.
Dialogs& dialogs();

using DialogsInUse = InUse<Dialogs>;

} // namespace selfreport
