#pragma once
#include <string_view>

namespace selfreport {

enum class Icon { none, information, question, exclamation, critical };

/// Message boxes. Texts are UTF-8.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// Shows a message with an OK button and returns once it is confirmed.
    virtual void message(Icon icon, std::string_view title, std::string_view text) = 0;

    /// Asks with Yes and No buttons under the question icon. True for Yes.
    virtual bool question(std::string_view title, std::string_view text) = 0;
};

/// The message boxes in use: silent ones at first, which answer every question with No.
Dialogs& dialogs();

/// Puts other message boxes into use while it lives. The last one made ends first.
class DialogsInUse {
public:
    explicit DialogsInUse(Dialogs& replacement);
    ~DialogsInUse();
    DialogsInUse(const DialogsInUse&) = delete;
    DialogsInUse& operator=(const DialogsInUse&) = delete;

private:
    Dialogs* m_former;
};

} // namespace selfreport
