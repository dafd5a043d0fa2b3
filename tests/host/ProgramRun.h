#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

/// A folder of a test's own, gone at its end.
class TestFolder {
public:
    TestFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "selfreport-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    ~TestFolder() { std::filesystem::remove_all(m_path); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string file(const std::string& name) const { return (m_path / name).string(); }

    /// Names of all that is in it, hidden ones included, sorted and parted by blanks.
    std::string content() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            names.insert(entry.path().filename().string());
        std::string text;
        for (const std::string& name : names)
            text += text.empty() ? name : ' ' + name;
        return text;
    }

private:
    std::filesystem::path m_path;
};

inline std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// One run of the program as a process of its own, without a display.
struct ProgramRun {
    int exitCode = -1; ///< -1 if it ended by a signal
    std::string output, errors;

    /// @param arguments    as for the shell
    /// @param environment  further variables, as "A=1 B=2 "
    explicit ProgramRun(const std::string& arguments, const std::string& environment = {})
    {
        const TestFolder folder;
        const std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " + environment +
                                    PROGRAM " " + arguments + " </dev/null >" + folder.file("output") +
                                    " 2>" + folder.file("errors");
        const int status = std::system(command.c_str());
        if (WIFEXITED(status))
            exitCode = WEXITSTATUS(status);
        output = contentOf(folder.file("output"));
        errors = contentOf(folder.file("errors"));
    }
};
