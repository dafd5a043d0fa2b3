#pragma once
#include "platform/services/FontDialog.h"

namespace selfreport {

/// The toolkit's font page with a list of colours below it, modal to the active window.
class QtFontDialog : public FontDialog {
public:
    std::optional<FontChoice> choose(const FontChoice& first) override;
};

} // namespace selfreport
