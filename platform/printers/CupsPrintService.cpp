#include "platform/printers/CupsPrintService.h"

#include "platform/printers/cups_library.h"
#include "platform/services/CLocale.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>

namespace selfreport {

namespace {

constexpr int connectTimeout = 5000; // milliseconds
constexpr double answerTimeout = 3;  // seconds without a byte, of each of the library's tries

struct CloseConnection {
    void operator()(http_t* connection) const { cups().httpClose(connection); }
};
using Server = std::unique_ptr<http_t, CloseConnection>;

int giveUp(http_t*, void*)
{
    return 0;
}

Server connectServer()
{
    Server server(cups().httpConnect2(cups().cupsServer(), cups().ippPort(), nullptr, AF_UNSPEC,
                                      cups().cupsEncryption(), 1, connectTimeout, nullptr));
    if (!server)
        throw PrintServiceError("打印服务没有回答。");
    cups().httpSetTimeout(server.get(), answerTimeout, giveUp, nullptr);
    return server;
}

/// What the service said last, in our words: its own are of another language, and some say "Success".
std::string lastReason()
{
    struct Known {
        ipp_status_t status;
        const char* text;
    };
    static constexpr std::array known{
        Known{IPP_STATUS_ERROR_FORBIDDEN, "没有权限"},
        Known{IPP_STATUS_ERROR_NOT_AUTHENTICATED, "没有权限"},
        Known{IPP_STATUS_ERROR_NOT_AUTHORIZED, "没有权限"},
        Known{IPP_STATUS_ERROR_NOT_FOUND, "打印机不存在"},
        Known{IPP_STATUS_ERROR_TIMEOUT, "等待超时"},
        Known{IPP_STATUS_ERROR_REQUEST_ENTITY, "文件太大"},
        Known{IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED, "不接受这种格式"},
        Known{IPP_STATUS_ERROR_SERVICE_UNAVAILABLE, "打印服务没有运行"},
        Known{IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS, "打印机现在不接受打印"},
        Known{IPP_STATUS_ERROR_BUSY, "打印服务正忙"},
    };
    const ipp_status_t status = cups().cupsLastError();
    if (status <= IPP_STATUS_OK_EVENTS_COMPLETE)
        return "打印服务没有说明原因";
    const auto found = std::ranges::find(known, status, &Known::status);
    return found == known.end() ? "打印服务出错（代码 " + std::to_string(status) + "）"
                                : std::string(found->text);
}

[[noreturn]] void failWith(const std::string& what)
{
    throw PrintServiceError(what + "：" + lastReason() + "。");
}

/// The server's printers.
class Destinations {
public:
    explicit Destinations(http_t* server)
        : m_count(cups().cupsGetDests2(server, &m_first))
    {
        if (m_count == 0 && cups().cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE &&
            cups().cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND)
            failWith("打印服务没有给出打印机");
    }
    ~Destinations() { cups().cupsFreeDests(m_count, m_first); }
    Destinations(const Destinations&) = delete;
    Destinations& operator=(const Destinations&) = delete;

    std::span<const cups_dest_t> all() const { return {m_first, static_cast<std::size_t>(m_count)}; }
    const cups_dest_t& named(const std::string& name) const
    {
        const auto found = std::ranges::find_if(
            all(), [&](const cups_dest_t& d) { return name.empty() ? d.is_default != 0 : name == d.name; });
        if (found != all().end())
            return *found;
        if (name.empty() && m_count > 0)
            return *m_first;
        throw PrintServiceError(name.empty() ? "没有可用的打印机。" : "找不到打印机“" + name + "”。");
    }

private:
    cups_dest_t* m_first = nullptr;
    int m_count;
};

std::string optionOf(const cups_dest_t& printer, const char* name)
{
    const char* const value = cups().cupsGetOption(name, printer.num_options, printer.options);
    return value ? value : std::string();
}

class Options {
public:
    Options() = default;
    ~Options() { cups().cupsFreeOptions(m_count, m_first); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    void add(const char* name, const std::string& value)
    {
        m_count = cups().cupsAddOption(name, value.c_str(), m_count, &m_first);
    }
    int count() const { return m_count; }
    cups_option_t* first() const { return m_first; }

private:
    cups_option_t* m_first = nullptr;
    int m_count = 0;
};

void setUp(Options& options, const PrinterSetup& setup)
{
    if (!setup.paper.empty())
        options.add("media", setup.paper);
    options.add("print-scaling", "none"); // the pages are laid out for the paper
    if (setup.copies > 1) {
        options.add("copies", std::to_string(setup.copies));
        options.add("multiple-document-handling", setup.collated ? "separate-documents-collated-copies"
                                                                 : "separate-documents-uncollated-copies");
        options.add("Collate", setup.collated ? "True" : "False");
    }
    if (setup.bothSides)
        options.add("sides", setup.landscape ? "two-sided-short-edge" : "two-sided-long-edge");
    if (!setup.inColour)
        options.add("print-color-mode", "monochrome");
}

} // namespace

std::vector<Printer> CupsPrintService::printers()
{
    const CLocale locale;
    const Server server = connectServer();
    const Destinations destinations(server.get());
    std::vector<Printer> printers;
    for (const cups_dest_t& destination : destinations.all())
        printers.push_back({destination.name, optionOf(destination, "printer-info"),
                            destination.is_default != 0,
                            optionOf(destination, "printer-is-accepting-jobs") != "false"});
    return printers;
}

std::string CupsPrintService::usualPaper(const std::string& printer)
{
    const CLocale locale;
    const Server server = connectServer();
    const Destinations destinations(server.get());
    cups_dest_t* const destination = const_cast<cups_dest_t*>(&destinations.named(printer));
    cups_dinfo_t* const details = cups().cupsCopyDestInfo(server.get(), destination);
    if (!details)
        return {};
    // The library's own search for a default medium prefers borderless ones to what the queue is set to.
    ipp_attribute_t* const usual = cups().cupsFindDestDefault(server.get(), destination, details, CUPS_MEDIA);
    const char* const name = usual ? cups().ippGetString(usual, 0, nullptr) : nullptr;
    const pwg_media_t* const media = name ? cups().pwgMediaForPWG(name) : nullptr;
    std::string paper = media && media->ppd ? media->ppd : std::string();
    cups().cupsFreeDestInfo(details);
    return paper;
}

void CupsPrintService::print(std::string_view pdf, const std::string& title, const PrinterSetup& setup)
{
    const CLocale locale;
    const Server server = connectServer();
    const Destinations destinations(server.get());
    const std::string name = destinations.named(setup.printer).name;
    Options options;
    setUp(options, setup);
    const int job =
        cups().cupsCreateJob(server.get(), name.c_str(), title.c_str(), options.count(), options.first());
    if (job == 0)
        failWith("打印机“" + name + "”没有接受打印");
    const bool sent =
        cups().cupsStartDocument(server.get(), name.c_str(), job, title.c_str(), CUPS_FORMAT_PDF, 1) ==
            HTTP_STATUS_CONTINUE &&
        cups().cupsWriteRequestData(server.get(), pdf.data(), pdf.size()) == HTTP_STATUS_CONTINUE &&
        cups().cupsFinishDocument(server.get(), name.c_str()) <= IPP_STATUS_OK_EVENTS_COMPLETE;
    if (sent)
        return;
    const std::string reason = lastReason();
    cups().cupsCancelJob2(server.get(), name.c_str(), job, 0); // half a document prints nonsense
    throw PrintServiceError("没有能把报表送到打印机“" + name + "”：" + reason + "。");
}

} // namespace selfreport
