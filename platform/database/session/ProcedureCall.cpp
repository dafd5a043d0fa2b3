#include "platform/database/session/ProcedureCall.h"

#include "platform/database/dialect/code_page.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>

namespace selfreport {

ProcedureCall& ProcedureCall::append(std::string name, std::size_t size, std::string value)
{
    parameters.push_back({std::move(name), size, std::move(value)});
    return *this;
}

const std::string* ProcedureCall::value(std::string_view name) const
{
    const auto found = std::ranges::find_if(
        parameters, [&](const ProcedureParameter& parameter) { return sameName(parameter.name, name); });
    return found == parameters.end() ? nullptr : &found->value;
}

std::optional<DatabaseError> oversizedParameter(const ProcedureCall& call)
{
    for (const ProcedureParameter& parameter : call.parameters) {
        const std::size_t length = codePageLength(parameter.value);
        if (length > parameter.size)
            return DatabaseError(unspecifiedError, "存储过程 " + call.procedure + " 的参数 " +
                                                       parameter.name + " 过长: " + std::to_string(length) +
                                                       " 字节, 最多 " + std::to_string(parameter.size) +
                                                       " 字节");
    }
    return std::nullopt;
}

} // namespace selfreport
