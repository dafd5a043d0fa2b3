#pragma once
#include "platform/services/InUse.h"

#include <cstdint>
#include <optional>
#include <string>

namespace selfreport {

struct FontChoice {
    std::string family; ///< UTF-8
    double points = 9;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    std::uint32_t colour = 0; ///< 0xRRGGBB

    friend bool operator==(const FontChoice&, const FontChoice&) = default;
};

/// The system's choice of a font for screen and printer, with its effects.
class FontDialog {
public:
    virtual ~FontDialog() = default;

    /// Opens on `first`. Nothing if the user cancels.
    virtual std::optional<FontChoice> choose(const FontChoice& first) = 0;

    /// What is in use without a replacement: at first a dialog that is cancelled at once.
    static FontDialog*& usual();
};

using FontDialogInUse = InUse<FontDialog>;

} // namespace selfreport
