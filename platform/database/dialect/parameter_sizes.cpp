#include "platform/database/dialect/parameter_sizes.h"

#include "platform/database/dialect/code_page.h"
#include "platform/database/dialect/text_columns.h"
#include "platform/database/session/ProcedureCall.h"

#include <algorithm>
#include <string>

namespace selfreport {

std::optional<DatabaseError> unfitParameter(const ProcedureCall& call, int codePage)
{
    for (const ProcedureParameter& parameter : call.parameters) {
        const std::string what = "存储过程 " + call.procedure + " 的参数 " + parameter.name;
        const std::size_t length = codePageLength(parameter.value);
        if (length > parameter.size)
            return DatabaseError(unspecifiedError, what + " 过长: " + std::to_string(length) +
                                                       " 字节, 最多 " + std::to_string(parameter.size) +
                                                       " 字节");
        if (const std::string missing = characterMissingIn(codePage, parameter.value); !missing.empty())
            return DatabaseError(unspecifiedError, what + " 中的“" + missing + "”不能交给这个数据库");
    }
    return std::nullopt;
}

bool hasOnlyAscii(const ProcedureCall& call)
{
    return std::ranges::all_of(call.parameters, [](const ProcedureParameter& parameter) {
        return std::ranges::all_of(parameter.value,
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    });
}

} // namespace selfreport
