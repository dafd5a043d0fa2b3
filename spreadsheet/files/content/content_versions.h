#pragma once
#include <content_generated.h>

#include <cstdint>

namespace spreadsheet {

/// The smallest version whose programs keep all that a finished content holds and show its figures as they
/// are.
std::uint32_t neededVersion(const stored::Content& content);

} // namespace spreadsheet
