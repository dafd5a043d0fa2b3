#pragma once
#include <cstdio>
#include <string>

namespace selfreport::tds {

// A server that was started for the tests, which may do to it what they like: SELFREPORT_TEST_SERVER_PROGRAM
// names the program that starts and kills it, SELFREPORT_TEST_SERVER_FOLDER its data.

bool serverIsOurs();

/// Kills the server with all its sessions at once, as a crash would.
void killServer();
void startServerAgain();

/// A table that is locked against everybody while this lives, from the server's other side.
class LockedTable {
public:
    /// @param connectionString  of a database on it
    LockedTable(const std::string& connectionString, const std::string& table);
    ~LockedTable();
    LockedTable(const LockedTable&) = delete;
    LockedTable& operator=(const LockedTable&) = delete;

private:
    void say(const std::string& text);

    std::FILE* m_pipe;
};

} // namespace selfreport::tds
