#pragma once
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

namespace spreadsheet {

/// A file cannot be written; what() names it and says why.
struct FileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// @throws FileError "无法写入文件 …: …"
[[noreturn]] void refuseToWrite(const std::filesystem::path& file, const std::string& reason);
[[noreturn]] void refuseToWrite(const std::filesystem::path& file, int error);

/// Where the name of a file to be written leads.
struct FileTarget {
    enum class Kind {
        fresh,   ///< nothing is there yet
        regular, ///< a file that may be replaced
        special, ///< a pipe, device or socket: it takes what is written to it and is never replaced
    };
    Kind kind = Kind::fresh;
    std::filesystem::path named; ///< as the user gave it
    std::filesystem::path file;  ///< behind all symbolic links; a link that leads nowhere names a fresh file
    struct stat status {};       ///< of what is there
};

/// What a file may take the place of.
enum class Replacing {
    documents, ///< any file but a database: no report is worth the ledger that it was made from
    anything,
};

/// Follows the name and looks at what is there.
/// @throws FileError  a folder, links in a circle, a file that nobody or not this user may write (the
///                    superuser neither), a name that the system does not take, a database unless it may be
FileTarget fileTargetOf(const std::filesystem::path& named, Replacing replacing = Replacing::documents);

/// Whether both lead to the same file, be it there yet or not.
bool isSameTarget(const FileTarget& one, const FileTarget& other);

} // namespace spreadsheet
