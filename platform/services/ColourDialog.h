#pragma once
#include "platform/services/InUse.h"

#include <cstdint>
#include <optional>

namespace selfreport {

/// The system's choice of one colour. Colours are 0xRRGGBB.
class ColourDialog {
public:
    virtual ~ColourDialog() = default;

    /// Opens on `first`; nothing is remembered from one opening to the next. Nothing if the user cancels.
    virtual std::optional<std::uint32_t> choose(std::uint32_t first) = 0;

    /// What is in use without a replacement: at first a dialog that is cancelled at once.
    static ColourDialog*& usual();
};

using ColourDialogInUse = InUse<ColourDialog>;

} // namespace selfreport
