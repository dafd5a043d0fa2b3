#pragma once
#include "tests/spreadsheet/files/FilesTest.h"

#include <cstdlib>
#include <fstream>

namespace spreadsheet {

/// Runs a script with other programs' libraries; what it prints, errors included.
inline std::string python(const TestFolder& folder, const std::string& script,
                          const std::filesystem::path& argument)
{
    std::ofstream(folder.file("script.py")) << script;
    const std::string command = "PYTHONIOENCODING=utf-8 /usr/bin/python3 -W ignore '" +
                                folder.file("script.py").string() + "' '" + argument.string() + "' >'" +
                                folder.file("output").string() + "' 2>&1";
    const int status = std::system(command.c_str());
    std::ifstream stream(folder.file("output"));
    std::string output{std::istreambuf_iterator<char>(stream), {}};
    return status == 0 ? output : "failed: " + output;
}

} // namespace spreadsheet
