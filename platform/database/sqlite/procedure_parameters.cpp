#include "platform/database/sqlite/procedure_parameters.h"

#include "platform/database/session/DatabaseError.h"
#include "text/ascii.h"

#include <charconv>

namespace selfreport {

const std::string& parameter(const ProcedureCall& call, std::string_view name)
{
    if (const std::string* value = call.value(name))
        return *value;
    throw DatabaseError(unspecifiedError, "存储过程 " + call.procedure + " 缺少参数 " + std::string(name));
}

std::string_view trimmedParameter(const ProcedureCall& call, std::string_view name)
{
    return ascii::trimmed(parameter(call, name), " ");
}

std::optional<std::int64_t> wholeNumber(const ProcedureCall& call, std::string_view name)
{
    const std::string_view text = trimmedParameter(call, name);
    if (text.empty())
        return std::nullopt;
    const std::string_view digits = text.substr(text.starts_with('+') ? 1 : 0);
    std::int64_t number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size())
        throw DatabaseError(unspecifiedError, "存储过程 " + call.procedure + " 的参数 " + std::string(name) +
                                                  " 不是整数: " + std::string(text));
    return number;
}

} // namespace selfreport
