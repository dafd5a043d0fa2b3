#pragma once
#include <span>
#include <string>

namespace selfreport {

/// Why there may be nothing of such codes, as a clause that follows "不存在":
/// "，“：”是全角字符，应为半角的“:”", or "，区间的起点大于终点". Empty if nothing about them is odd.
std::string codeHint(std::span<const std::string> codes);

} // namespace selfreport
