#pragma once
#include <cstdint>
#include <span>
#include <string_view>

namespace selfreport::demo {

/// Classes of items that an account is kept by, as bits.
enum ItemClass : std::uint8_t {
    noItems = 0,
    byCustomer = 1,
    bySupplier = 2,
    byGoods = 4,
    byDepartment = 8,
};

/// An account of the trading company. Codes have 4, 6 or 8 digits; a parent's code is the child's without its
/// last two. Children stand on their parent's side and are kept by its items.
struct ChartAccount {
    std::string_view code;
    std::string_view name;
    int direction = 0;      ///< 1 debit, -1 credit; given on the first level only
    std::uint8_t items = 0; ///< ItemClass bits; given on the first level only
    bool quantities = false;
};

/// Ordered by code, every parent before its children.
std::span<const ChartAccount> chartOfAccounts();

} // namespace selfreport::demo
