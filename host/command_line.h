#pragma once
#include <cstdint>
#include <string>
#include <variant>

namespace selfreport {

/// What the user asked for.
struct DemoCommand {
    std::string file;
    bool replaces = false;
};
struct ListCommand {
    std::string database;
};
struct RunCommand {
    std::string database;
    std::int32_t reportId = 0;
    std::string pdf, csv; ///< "" for one that is not wanted
    bool allowFailed = false;
    bool isStrict = false;
    bool isArchive = false;
};
struct CheckCommand {
    std::string database;
};
struct ProveCommand {
    std::string database;
    int year = 0; ///< 0: all
    bool asJson = false;
};
struct ExplainCommand {
    std::string database;
    std::int32_t reportId = 0;
    std::string cell; ///< "Sheet1!B7"
    int depth = 3;
    bool asJson = false;
};
struct ConvertCommand {
    std::string input, output;
    bool recalculates = false;
};
struct FunctionsCommand {};
/// The window: no other command was given.
struct WindowCommand {
    std::string database; ///< "": the user chooses
};
/// Nothing more is to be done: help was printed, or the command line was refused with a message.
struct Finished {
    int exitCode = 0; ///< 0, or 2 for a command line that is wrong
};

using Command = std::variant<Finished, WindowCommand, DemoCommand, ListCommand, RunCommand, CheckCommand,
                             ProveCommand, ExplainCommand, ConvertCommand, FunctionsCommand>;

/// Reads the command line. Prints help to standard output and refusals to standard error.
Command readCommandLine(int count, const char* const* arguments);

} // namespace selfreport
