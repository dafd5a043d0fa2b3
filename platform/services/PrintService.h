#pragma once
#include "platform/services/InUse.h"
#include "platform/services/PrinterSetupDialog.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// The print service does not answer or refuses; what() is one Chinese sentence for the user.
struct PrintServiceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A service that has not answered by then counts as silent; with the half second that giving up may take
/// the user knows after 2 seconds.
inline constexpr std::chrono::milliseconds printServicePatience{1300};

struct Printer {
    std::string name;        ///< by which jobs name it
    std::string description; ///< for people; may be empty
    bool isDefault = false;
    bool acceptsJobs = true;
};

/// The system's printers. Every operation may wait some seconds for an answer: never call one on the
/// user-interface thread. @throws PrintServiceError
class PrintService {
public:
    virtual ~PrintService() = default;

    virtual std::vector<Printer> printers() = 0;

    /// The paper that a printer takes unless told otherwise, as "A4" or "Letter"; empty if it does not say.
    virtual std::string usualPaper(const std::string& printer) = 0;

    /// Hands a finished PDF over to the printer that `setup` names. Its pages have their final size and
    /// orientation. Returns once the service has taken it.
    virtual void print(std::string_view pdf, const std::string& title, const PrinterSetup& setup) = 0;

    /// What is in use without a replacement: at first a service without printers.
    static PrintService*& usual();
};

using PrintServiceInUse = InUse<PrintService>;

/// Makes the system's own print service the usual one.
void useSystemPrintService();

} // namespace selfreport
