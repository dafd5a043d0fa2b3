#pragma once
#include "platform/services/PrintService.h"

#include <functional>

namespace selfreport {

/// Printers for tests: what was printed is kept, and `before` may fail or wait in each operation.
struct ScriptedPrintService : PrintService {
    struct Printed {
        std::string pdf, title;
        PrinterSetup setup;
    };

    std::vector<Printer> printers() override
    {
        before();
        return known;
    }
    std::string usualPaper(const std::string&) override
    {
        before();
        return paper;
    }
    void print(std::string_view pdf, const std::string& title, const PrinterSetup& setup) override
    {
        before();
        printed.push_back({std::string(pdf), title, setup});
    }

    std::vector<Printer> known;
    std::string paper;
    std::vector<Printed> printed;
    std::function<void()> before = [] {};
};

} // namespace selfreport
