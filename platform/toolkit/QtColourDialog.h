#pragma once
#include "platform/services/ColourDialog.h"

namespace selfreport {

/// The toolkit's colour dialog, modal to the active window.
class QtColourDialog : public ColourDialog {
public:
    std::optional<std::uint32_t> choose(std::uint32_t first) override;
};

} // namespace selfreport
