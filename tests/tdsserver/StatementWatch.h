#pragma once
#include <functional>
#include <string>

namespace selfreport::tds {

/// While it lives, acts once, as the first statement that begins with a text is about to run in the database
/// file: on either provider, as the server's data is such a file too. It sees sessions that were opened
/// since.
class StatementWatch {
public:
    StatementWatch(std::string beginning, std::function<void()> act);
    ~StatementWatch();
    StatementWatch(const StatementWatch&) = delete;
    StatementWatch& operator=(const StatementWatch&) = delete;
};

} // namespace selfreport::tds
