#pragma once
#include "tests/tdsserver/bytes.h"

#include <cstdint>
#include <string>
#include <variant>

namespace selfreport::tds {

enum class TypeToken : std::uint8_t {
    image = 0x22,
    text = 0x23,
    intN = 0x26,
    datetime2N = 0x2A,
    ntext = 0x63,
    bitN = 0x68,
    decimalN = 0x6A,
    numericN = 0x6C,
    floatN = 0x6D,
    datetimeN = 0x6F,
    varbinary = 0xA5,
    varchar = 0xA7,
    nvarchar = 0xE7,
};

/// Size of varchar(max), nvarchar(max) and varbinary(max).
inline constexpr std::uint32_t unlimited = 0xFFFF;

struct TypeInfo {
    TypeToken token = TypeToken::intN;
    std::uint32_t size = 4;     ///< most bytes on the wire
    std::uint8_t precision = 0; ///< of decimals
    std::uint8_t scale = 0;     ///< of decimals and datetime2
};

struct Blob {
    std::string bytes;
};

/// Texts are UTF-8, moments texts such as "2009-12-31 08:05:09".
using Value = std::variant<std::monostate, std::int64_t, double, std::string, Blob>;

/// The type as T-SQL writes it: "int", "nvarchar(20)", "varbinary(max)".
std::string typeName(const TypeInfo& type);

void putTypeInfo(std::string& bytes, const TypeInfo& type);
TypeInfo readTypeInfo(ByteReader& reader);

/// A value of a row. Nothing is cut: the type must be wide enough.
void putValue(std::string& bytes, const TypeInfo& type, const Value& value);

/// A value of a request. @throws ProtocolError also for types that no request of the driver holds
Value readValue(ByteReader& reader, const TypeInfo& type);

} // namespace selfreport::tds
