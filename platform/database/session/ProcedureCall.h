#pragma once
#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/Recordset.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// A text that goes into a stored procedure.
struct ProcedureParameter {
    std::string name;  ///< without "@"
    std::size_t size;  ///< most bytes it may take in the server's code page
    std::string value; ///< UTF-8
};

/// One call of a stored procedure; its parameters go out in the order in which they were appended.
struct ProcedureCall {
    std::string procedure;
    std::vector<ProcedureParameter> parameters;

    ProcedureCall& append(std::string name, std::size_t size, std::string value);

    /// Value of a parameter, letter case of the name ignored. Null if there is none.
    const std::string* value(std::string_view name) const;
};

/// What one call gave. Without an error the rows are whole and the return value is the procedure's own.
struct ProcedureResult {
    std::int64_t returnValue = -1;     ///< stays -1 if the call failed
    std::optional<Recordset> rows{};   ///< none if the procedure opened no row set
    std::vector<Recordset> moreRows{}; ///< behind the first row set, of a call that goes out alone
    std::optional<DatabaseError> error{};
};

} // namespace selfreport
