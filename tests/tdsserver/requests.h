#pragma once
#include "tests/tdsserver/values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport::tds {

struct Parameter {
    std::string name; ///< with "@"; empty if it was sent by its place
    TypeInfo type;
    Value value;
    bool isOutput = false;
};

/// Procedures of the protocol itself that drivers use to run statements.
enum class SystemProcedure : std::uint16_t {
    none = 0,
    executeSql = 10,
    prepare = 11,
    execute = 12,
    prepareAndExecute = 13,
    unprepare = 15,
};

struct ProcedureRequest {
    SystemProcedure system = SystemProcedure::none;
    std::string name; ///< empty if it was called by number
    std::vector<Parameter> parameters;
};

struct TransactionRequest {
    enum class Kind : std::uint16_t { begin = 5, commit = 7, rollBack = 8 };
    Kind kind;
    bool beginsNext = false; ///< another transaction follows at once
};

// Each throws ProtocolError if the message is damaged.
std::string readBatch(std::string_view message);
ProcedureRequest readProcedure(std::string_view message);
TransactionRequest readTransaction(std::string_view message);

} // namespace selfreport::tds
