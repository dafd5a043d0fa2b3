#pragma once
#include "platform/dialogs/PrinterSetupDialog.h"

class QPrinter;

namespace selfreport {

/// The toolkit's printer dialog, modal to the active window.
class QtPrinterSetupDialog : public PrinterSetupDialog {
public:
    std::optional<PrinterSetup> choose(const PrinterSetup& first) override;
};

/// Sets a printer up as it was chosen. A printer or paper that is not there any more leaves the default.
void applyPrinterSetup(QPrinter& printer, const PrinterSetup& setup);

PrinterSetup printerSetupOf(const QPrinter& printer);

} // namespace selfreport
