#pragma once
#include <filesystem>

namespace spreadsheet {

struct FileTarget;

/// Writes all that a file holds to a pipe, device or socket. Who does not take it within some seconds
/// is given up. @throws FileError
void writeToSpecialFile(const FileTarget& target, const std::filesystem::path& content);

} // namespace spreadsheet
