#include "access/DatabaseAccess.h"

#include "failures/failure_text.h"
#include "platform/database/dialect/server_errors.h"

#include <array>
#include <exception>

namespace selfreport {

std::string_view openingFailureText(std::int32_t number)
{
    if (number == loginRejected)
        return "用户名或密码错误!";
    static const std::string notOpened = "数据库文件不存在或读取错误!";
    static const std::string notEncrypted =
        notOpened + "\n" + std::string(serverErrorText(std::array{encryptionRefused})) + "。";
    return number == encryptionRefused ? notEncrypted : notOpened;
}

DatabaseAccess::DatabaseAccess(std::string target, Tell tells)
    : connectionString(std::move(target))
    , m_tells(std::move(tells))
{
}

bool DatabaseAccess::openingFailed() const
{
    return m_recalculation && !m_recalculation->openingFailure.empty();
}

Connection& DatabaseAccess::opened()
{
    if (connection)
        return *connection;
    {
        const driver_calls::UnderWay alone; // else it throws: that is no failed opening
    }
    if (openingFailed())
        throw DatabaseNotOpened(m_recalculation->openingFailure);
    std::int32_t number = unspecifiedError;
    try {
        connection = driverCall<std::unique_ptr<Connection>>(
            [target = connectionString] { return openConnection(target); });
        return *connection;
    } catch (const DatabaseError& error) {
        number = error.number;
    } catch (const std::exception&) {
        // told like any other failure
    }
    const std::string failure(openingFailureText(number));
    if (m_recalculation)
        m_recalculation->openingFailure = failure;
    throw DatabaseNotOpened(failure);
}

bool DatabaseAccess::open()
{
    return told(Icon::critical, [this] { opened(); });
}

void DatabaseAccess::close()
{
    connection.reset();
}

void DatabaseAccess::tell(Icon icon, std::string_view text)
{
    if (m_recalculation && !m_recalculation->told.emplace(icon, text).second)
        return;
    if (m_tells)
        m_tells(icon, text);
}

bool DatabaseAccess::told(Icon icon, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const DatabaseNotOpened& error) {
        tell(Icon::critical, error.what());
    } catch (const OpeningFailed& error) {
        tell(Icon::critical, openingFailureText(error.number));
    } catch (const std::exception& error) {
        tell(icon, failures::sentenceOf(error));
    }
    return false;
}

bool DatabaseAccess::done(Icon icon, const std::function<void()>& work)
{
    try {
        return told(icon, work);
    } catch (const WorkCancelled&) {
        return false;
    }
}

bool DatabaseAccess::run(Icon icon, std::function<void(Connection&)> work)
{
    return read<bool>(icon,
                      [work = std::move(work)](Connection& open) {
                          work(open);
                          return true;
                      })
        .has_value();
}

RecalculationUnderWay::RecalculationUnderWay(DatabaseAccess& database)
    : m_database(database)
    , m_isOutermost(!database.m_recalculation)
{
    if (m_isOutermost)
        m_database.m_recalculation.emplace();
}

RecalculationUnderWay::~RecalculationUnderWay()
{
    if (!m_isOutermost)
        return;
    m_database.m_recalculation.reset();
    m_database.close(); // a fetch without an account leaves it open
}

} // namespace selfreport
