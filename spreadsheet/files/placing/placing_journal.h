#pragma once
#include <filesystem>
#include <span>
#include <string>

namespace spreadsheet {

/// A file that is whole under a temporary name and on its way to its final one.
struct Placing {
    std::filesystem::path temporary, final;
    std::string former; ///< `fileState` of what stands under the final name
};

/// Tells one state of a file from another, also from a file that has taken its place; "" if there is none.
std::string fileState(const std::filesystem::path& file);

/// What a process that is killed while it puts files in place leaves to the next one.
std::string journalText(std::span<const Placing> placings);

/// Finishes what a journal tells of: files that are still under their temporary names get their final ones,
/// unless something else was put there since. A text that is no journal is none of its business.
void finishPlacing(const std::string& journal);

} // namespace spreadsheet
