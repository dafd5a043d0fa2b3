#pragma once
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace selfreport::test {

/// A file of this program run. Numbers of processes come again, and a program that was killed leaves its
/// files: so the folder's name is one that nobody had. It goes with the program that made it, not with its
/// forks.
inline std::filesystem::path ownFile(const std::string& name)
{
    static const struct Folder {
        Folder()
        {
            std::string pattern = (std::filesystem::temp_directory_path() / "selfreport-XXXXXX").string();
            if (::mkdtemp(pattern.data()) == nullptr)
                throw std::runtime_error("no folder " + pattern);
            path = pattern;
        }
        ~Folder()
        {
            std::error_code ignored;
            if (::getpid() == owner)
                std::filesystem::remove_all(path, ignored);
        }
        const pid_t owner = ::getpid();
        std::filesystem::path path;
    } folder;
    return folder.path / name;
}

} // namespace selfreport::test
