#include "tests/tdsserver/Journal.h"

namespace selfreport::tds {

void Journal::add(Request request)
{
    const std::lock_guard lock(m_mutex);
    m_requests.push_back(std::move(request));
}

void Journal::add(const Login& login)
{
    const std::lock_guard lock(m_mutex);
    m_logins.push_back(login);
}

std::vector<Request> Journal::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::vector<Login> Journal::logins() const
{
    const std::lock_guard lock(m_mutex);
    return m_logins;
}

void Journal::clear()
{
    const std::lock_guard lock(m_mutex);
    m_requests.clear();
    m_logins.clear();
}

} // namespace selfreport::tds
