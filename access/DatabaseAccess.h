#pragma once
#include "access/driver_call.h"
#include "platform/database/Connection.h"
#include "platform/services/Dialogs.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace selfreport {

/// The database could not be opened; what() is the sentence for the user.
struct DatabaseNotOpened : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What the user is told about a failed opening, by the error's number.
std::string_view openingFailureText(std::int32_t number);

/// What a step that needed the database says after a failed opening.
inline constexpr const char* databaseNotOpen = "数据库打不开";

/// The way to the database for all that work on it together: one connection at a time, opened around each
/// piece of work, and one place where failures are told. Used on one thread.
class DatabaseAccess {
public:
    using Tell = std::function<void(Icon, std::string_view)>;

    /// @param tells  shows the user one sentence; without it nobody is told
    explicit DatabaseAccess(std::string target = {}, Tell tells = {});
    DatabaseAccess(const DatabaseAccess&) = delete;
    DatabaseAccess& operator=(const DatabaseAccess&) = delete;

    std::string connectionString;
    std::unique_ptr<Connection> connection; ///< none between pieces of work

    /// The connection, opened now if there is none. Within one recalculation a failed opening is not tried
    /// again. @throws DatabaseNotOpened; WorkCancelled if the user waits for it and cancels
    Connection& opened();
    /// The same. False after telling the user why it failed.
    bool open();
    void close();

    /// Runs `work`. False if the user cancelled, or after telling the user why it failed: its sentence under
    /// `icon`, a failed opening under the critical one. What it holds of the connection must be gone by then:
    /// a message box runs the event loop.
    bool done(Icon icon, const std::function<void()>& work);

    // What follows runs `work` on the open connection and closes it. It may run on another thread and be left
    // behind: it owns all that it uses. What it left open in a transaction is rolled back.

    /// @throws DatabaseNotOpened, WorkCancelled, what `work` throws
    template <class Result>
    Result asked(std::function<Result(Connection&)> work);
    /// The same. Nothing if the user cancelled, or after telling why it failed as done() does.
    template <class Result>
    std::optional<Result> read(Icon icon, std::function<Result(Connection&)> work);
    bool run(Icon icon, std::function<void(Connection&)> work);

    /// `work` changes what is stored, in a transaction that it commits. A result that comes with or behind a
    /// cancellation counts.
    /// @throws WorkCancelled if nothing was changed; ChangeLeftBehind if nobody knows; as above
    template <class Result>
    Result changed(std::function<Result(Connection&)> work);

    /// Tells the user; within one recalculation each text once.
    void tell(Icon icon, std::string_view text);

    /// Whether the database could not be opened in the recalculation under way.
    bool openingFailed() const;

private:
    friend class RecalculationUnderWay;

    bool told(Icon icon, const std::function<void()>& work);

    struct Recalculation {
        std::string openingFailure; ///< "" without one
        std::set<std::pair<Icon, std::string>> told;
    };
    Tell m_tells;
    std::optional<Recalculation> m_recalculation;
};

/// The open connection while it lives; closed at the end of the scope.
class OpenedDatabase {
public:
    /// @throws DatabaseNotOpened, WorkCancelled
    explicit OpenedDatabase(DatabaseAccess& database)
        : m_database(database)
    {
        m_database.opened();
    }
    ~OpenedDatabase() { m_database.close(); }
    OpenedDatabase(const OpenedDatabase&) = delete;
    OpenedDatabase& operator=(const OpenedDatabase&) = delete;

    Connection& operator*() const { return *m_database.connection; }
    Connection* operator->() const { return m_database.connection.get(); }

private:
    DatabaseAccess& m_database;
};

template <class Result>
Result DatabaseAccess::asked(std::function<Result(Connection&)> work)
{
    const OpenedDatabase isOpen(*this);
    return driverCall<Result>(connection, std::move(work));
}

template <class Result>
Result DatabaseAccess::changed(std::function<Result(Connection&)> work)
{
    const OpenedDatabase isOpen(*this);
    return driverChange<Result>(connection, std::move(work));
}

template <class Result>
std::optional<Result> DatabaseAccess::read(Icon icon, std::function<Result(Connection&)> work)
{
    std::optional<Result> result;
    done(icon, [&] { result = asked<Result>(std::move(work)); });
    return result;
}

/// While it lives, one recalculation is under way: what its many fetches tell is told once, a database that
/// could not be opened is not tried again, and the connection is closed at its end. A nested one (a
/// referenced report being evaluated) belongs to the outer one.
class RecalculationUnderWay {
public:
    explicit RecalculationUnderWay(DatabaseAccess& database);
    ~RecalculationUnderWay();
    RecalculationUnderWay(const RecalculationUnderWay&) = delete;
    RecalculationUnderWay& operator=(const RecalculationUnderWay&) = delete;

private:
    DatabaseAccess& m_database;
    bool m_isOutermost;
};

} // namespace selfreport
