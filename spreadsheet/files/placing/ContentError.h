#pragma once
#include <stdexcept>
#include <string>

namespace spreadsheet {

/// A file was refused or cannot be written; what() is one Chinese sentence for the user.
struct ContentError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// @throws ContentError that names what is wrong with a stored file
[[noreturn]] inline void refuseContent(const std::string& reason)
{
    throw ContentError("报表内容已损坏: " + reason);
}

inline void requireContent(bool holds, const char* reason)
{
    if (!holds)
        refuseContent(reason);
}

/// @throws ContentError that names what is wrong with a file of another program
[[noreturn]] inline void refuseFile(const std::string& reason)
{
    throw ContentError("文件无法读取: " + reason);
}

inline void requireFile(bool holds, const char* reason)
{
    if (!holds)
        refuseFile(reason);
}

} // namespace spreadsheet
