#pragma once
#include <cstdint>
#include <string_view>

namespace selfreport {

struct LedgerFetch;

/// Which kind of figure a call gave, or which kind of nothing. Later ones are worse. The numbers are stored
/// in sheets (`SheetSettings::nothingTexts`): never renumber.
enum class CallState : std::uint8_t {
    value,
    zeroBalance,   ///< a balance of 0
    noMovement,    ///< nothing moved
    noData,        ///< the account has no row in that year or period
    notApplicable, ///< the account keeps no quantities, or no profit and loss
    missing,       ///< the call names something that there is not, whatever it came to
    failed,        ///< what there is to find is not known
};

/// "值", "余额为零", "无发生", "期间无数据", "不适用", "不存在", "取数失败".
std::string_view stateName(CallState state);

/// Whether a figure of that state is in doubt, so that its cell is marked and totals carry it.
constexpr bool isMarked(CallState state)
{
    return state >= CallState::noData;
}

/// … so much that a strict run does not hand it out.
constexpr bool isRefusedByStrictRuns(CallState state)
{
    return state >= CallState::missing;
}

/// The state of a fetch as far as its answer tells it: of one without an amount `noData`, and the ledger has
/// to be asked what kind of nothing it is.
CallState stateOfAnswer(const LedgerFetch& fetch);

/// What a fetch type takes of an account beside its balances.
bool asksQuantities(std::string_view fetchType);
bool asksProfitAndLoss(std::string_view fetchType);

} // namespace selfreport
