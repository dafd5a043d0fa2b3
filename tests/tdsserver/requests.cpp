#include "tests/tdsserver/requests.h"

#include "tests/tdsserver/texts.h"

namespace selfreport::tds {

namespace {

/// Every request begins with headers (transaction, open requests) that need no answer.
ByteReader behindHeaders(std::string_view message)
{
    ByteReader reader(message);
    const auto size = reader.littleEndian<std::uint32_t>();
    if (size < sizeof size)
        throw ProtocolError("headers of no size");
    reader.bytes(size - sizeof size);
    return reader;
}

std::string readName(ByteReader& reader, std::size_t units)
{
    return utf8OfUtf16(reader.bytes(units * 2));
}

/// The driver names some of them by number and some by name.
SystemProcedure systemProcedure(const std::string& name)
{
    static constexpr struct {
        const char* name;
        SystemProcedure procedure;
    } known[] = {{"sp_executesql", SystemProcedure::executeSql},
                 {"sp_prepare", SystemProcedure::prepare},
                 {"sp_execute", SystemProcedure::execute},
                 {"sp_prepexec", SystemProcedure::prepareAndExecute},
                 {"sp_unprepare", SystemProcedure::unprepare}};
    for (const auto& one : known)
        if (name == one.name)
            return one.procedure;
    return SystemProcedure::none;
}

Parameter readParameter(ByteReader& reader)
{
    Parameter parameter;
    parameter.name = readName(reader, reader.byte());
    parameter.isOutput = (reader.byte() & 1U) != 0;
    parameter.type = readTypeInfo(reader);
    parameter.value = readValue(reader, parameter.type);
    return parameter;
}

} // namespace

std::string readBatch(std::string_view message)
{
    return utf8OfUtf16(behindHeaders(message).rest());
}

ProcedureRequest readProcedure(std::string_view message)
{
    constexpr std::uint16_t byNumber = 0xFFFF;
    ByteReader reader = behindHeaders(message);
    ProcedureRequest request;
    const auto units = reader.littleEndian<std::uint16_t>();
    if (units == byNumber)
        request.system = static_cast<SystemProcedure>(reader.littleEndian<std::uint16_t>());
    else
        request.name = readName(reader, units);
    if (request.system == SystemProcedure::none)
        request.system = systemProcedure(request.name);
    reader.bytes(2); // options
    while (!reader.atEnd())
        request.parameters.push_back(readParameter(reader));
    return request;
}

TransactionRequest readTransaction(std::string_view message)
{
    ByteReader reader = behindHeaders(message);
    TransactionRequest request{};
    request.kind = static_cast<TransactionRequest::Kind>(reader.littleEndian<std::uint16_t>());
    if (request.kind == TransactionRequest::Kind::begin)
        return request;
    readName(reader, reader.byte() / std::size_t{2});
    request.beginsNext = (reader.byte() & 1U) != 0;
    return request;
}

} // namespace selfreport::tds
