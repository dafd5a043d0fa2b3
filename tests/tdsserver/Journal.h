#pragma once
#include "tests/tdsserver/faults.h"
#include "tests/tdsserver/login.h"
#include "tests/tdsserver/requests.h"

#include <mutex>
#include <string>
#include <vector>

namespace selfreport::tds {

/// One request as it came over the wire.
struct Request {
    int session = 0; ///< from 1, in the order of connecting
    Step step = Step::batch;
    std::string text; ///< statement or name of the procedure
    std::vector<Parameter> parameters;
};

/// What the server was asked so far. Safe from any thread.
class Journal {
public:
    void add(Request request);
    void add(const Login& login);

    /// Requests of sessions that are logged in; each took a round trip.
    std::vector<Request> requests() const;
    std::vector<Login> logins() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::vector<Request> m_requests;
    std::vector<Login> m_logins;
};

} // namespace selfreport::tds
