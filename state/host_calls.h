#pragma once
#include <cstdint>
#include <string>

namespace selfreport {

// What the host's calls write into the shared state before their window opens.

void initShared(const std::string& connString, const std::string& title, const std::string& loginUserId,
                const std::string& appPath);
/// The list of reports, for design; the designer refills it from now on when it closes.
void prepareForList();
/// A stored report, for use.
void prepareForRun(std::int32_t report);

} // namespace selfreport
