#include "platform/database/dialect/parameter_sizes.h"

#include "platform/database/dialect/code_page.h"
#include "platform/database/session/ProcedureCall.h"

namespace selfreport {

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
