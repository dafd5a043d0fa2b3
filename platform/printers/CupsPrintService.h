#pragma once
#include "platform/services/PrintService.h"

namespace selfreport {

/// Printers of a CUPS server: the one of the system or of the variable CUPS_SERVER. A server that does not
/// answer within a few seconds is given up.
class CupsPrintService : public PrintService {
public:
    std::vector<Printer> printers() override;
    std::string usualPaper(const std::string& printer) override;
    void print(std::string_view pdf, const std::string& title, const PrinterSetup& setup) override;
};

} // namespace selfreport
