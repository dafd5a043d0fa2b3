#pragma once
#include <cstddef>
#include <string_view>

namespace selfreport {

/// Bytes that a UTF-8 text takes in the server's Chinese code page (GBK; GB18030 for what GBK lacks).
/// A byte that is no UTF-8 counts as one.
std::size_t codePageLength(std::string_view text);

} // namespace selfreport
