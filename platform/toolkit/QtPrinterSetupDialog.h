#pragma once
#include "platform/services/PrinterSetupDialog.h"

namespace selfreport {

/// Printers with their settings, modal to the active window. The printers are asked for in the background; a
/// service that does not answer leaves a list without printers and says why.
class QtPrinterSetupDialog : public PrinterSetupDialog {
public:
    std::optional<PrinterSetup> choose(const PrinterSetup& first) override;
};

} // namespace selfreport
