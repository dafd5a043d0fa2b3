#pragma once
#include <array>
#include <cstdint>
#include <string>

namespace selfreport {

// The texts that page set-up and the header and footer editor send.

/// Margins and direction of a stored report, each null replaced by its default.
std::string loadPageSetupStatement(std::int64_t report);

/// @param inches  left, right, top and bottom margin
std::string savePageSetupStatement(std::int64_t report, const std::array<double, 4>& inches, bool portrait);

/// Its one parameter is the code string.
std::string saveHeaderStatement(std::int64_t report, bool footer);

/// Its parameters are the margins top, bottom, left and right, the direction, header and footer.
std::string storeWholePageSetupStatement(std::int64_t report);

} // namespace selfreport
