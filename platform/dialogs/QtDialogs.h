#pragma once
#include "platform/dialogs/Dialogs.h"

namespace selfreport {

/// The toolkit's message boxes, modal to the active window. Without a running application object with windows
/// nothing is shown, and questions are answered with No.
class QtDialogs : public Dialogs {
public:
    void message(Icon icon, std::string_view title, std::string_view text) override;
    bool ask(Icon icon, std::string_view title, std::string_view text) override;
};

} // namespace selfreport
