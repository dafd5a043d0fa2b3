#include "platform/database/session/ProcedureCall.h"

#include "platform/database/session/names.h"

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

} // namespace selfreport
