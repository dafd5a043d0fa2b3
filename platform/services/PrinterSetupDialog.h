#pragma once
#include "platform/services/InUse.h"

#include <optional>
#include <string>

namespace selfreport {

/// A printer and how it is to print. Empty texts leave the printer's own setting.
struct PrinterSetup {
    std::string printer; ///< its name; "" for the system's default printer
    std::string paper;   ///< "A4", "Letter", …
    std::string file;    ///< output goes to this file instead of a printer
    int copies = 1;
    bool collated = true;
    bool landscape = false;
    bool inColour = true;
    bool bothSides = false;

    friend bool operator==(const PrinterSetup&, const PrinterSetup&) = default;
};

/// The system's choice of a printer and its settings. It prints nothing.
class PrinterSetupDialog {
public:
    virtual ~PrinterSetupDialog() = default;

    /// Opens on `first`. Nothing if the user cancels.
    virtual std::optional<PrinterSetup> choose(const PrinterSetup& first) = 0;

    /// What is in use without a replacement: at first a dialog that is cancelled at once.
    static PrinterSetupDialog*& usual();
};

using PrinterSetupDialogInUse = InUse<PrinterSetupDialog>;

} // namespace selfreport
