#include "fetch/CallState.h"

#include "fetch/ledger_fetch.h"
#include "fetch/plain_arguments.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

using namespace std::string_view_literals;

template <typename Keys>
bool isAmong(const Keys& keys, std::string_view fetchType)
{
    return std::ranges::find(keys, plainFetchType(fetchType)) != std::end(keys);
}

bool asksBalance(std::string_view fetchType)
{
    static constexpr std::array balances{"1"sv, "2"sv, "9"sv, "10"sv, "13"sv, "14"sv};
    return isAmong(balances, fetchType);
}

} // namespace

bool asksQuantities(std::string_view fetchType)
{
    static constexpr std::array quantities{"9"sv, "10"sv, "11"sv, "12"sv};
    return isAmong(quantities, fetchType);
}

bool asksProfitAndLoss(std::string_view fetchType)
{
    static constexpr std::array profitAndLoss{"7"sv, "8"sv};
    return isAmong(profitAndLoss, fetchType);
}

std::string_view stateName(CallState state)
{
    static constexpr std::array names{"值"sv,     "余额为零"sv, "无发生"sv,  "期间无数据"sv,
                                      "不适用"sv, "不存在"sv,   "取数失败"sv};
    return names.at(static_cast<std::size_t>(state));
}

CallState stateOfAnswer(const LedgerFetch& fetch)
{
    const LedgerAnswer& answer = fetch.answer;
    if (!answer.failure.empty())
        return CallState::failed;
    if (fetch.arguments.account.empty() || !answer.unknownClasses.empty())
        return CallState::missing;
    if (!answer.amount)
        return CallState::noData;
    if (*answer.amount != 0)
        return CallState::value;
    return asksBalance(fetch.arguments.fetchType) ? CallState::zeroBalance : CallState::noMovement;
}

} // namespace selfreport
