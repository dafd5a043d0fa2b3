#pragma once
#include "platform/InUse.h"

#include <string_view>

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

    /// What is in use without a replacement: at first silent boxes that answer every question with No.
    static Dialogs*& usual();
};

/// The message boxes in use.
Dialogs& dialogs();

using DialogsInUse = InUse<Dialogs>;

} // namespace selfreport
