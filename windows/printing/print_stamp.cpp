#include "windows/printing/print_stamp.h"

#include "platform/services/SettingsStore.h"

#include <chrono>
#include <ctime>

namespace selfreport {

std::string stampText(const PrintStamp& stamp)
{
    std::string text = "打印时间 " + stamp.time;
    if (!stamp.operator_.empty())
        text += "　操作员 " + stamp.operator_;
    if (!stamp.ledger.empty())
        text += "　账套 " + stamp.ledger;
    return text + (stamp.diagnostics > 0 ? "　取数诊断 " + std::to_string(stamp.diagnostics) + " 条"
                                         : "　取数无诊断");
}

std::string operatorName(const std::string& user)
{
    const std::string named = settingsStore().value("ParamValue", "Value3");
    return named.empty() ? user : named;
}

PrintStamp stampNow(const std::string& user, const std::string& ledger, int diagnostics)
{
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
    return {time, operatorName(user), ledger, diagnostics};
}

} // namespace selfreport
