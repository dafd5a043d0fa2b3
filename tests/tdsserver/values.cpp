#include "tests/tdsserver/values.h"

#include "tests/tdsserver/moments.h"
#include "tests/tdsserver/texts.h"

#include <bit>
#include <cmath>

namespace selfreport::tds {

namespace {

constexpr std::string_view chineseCollation("\x04\x08\xd0\x00\x00", 5);
constexpr std::uint64_t noPieces = ~std::uint64_t{0}; // length of a null among the unlimited types

bool isText(TypeToken token)
{
    return token == TypeToken::varchar || token == TypeToken::nvarchar || token == TypeToken::text ||
           token == TypeToken::ntext;
}

bool isWide(TypeToken token)
{
    return token == TypeToken::nvarchar || token == TypeToken::ntext;
}

bool isVariable(TypeToken token)
{
    return token == TypeToken::varchar || token == TypeToken::nvarchar || token == TypeToken::varbinary;
}

bool isLong(TypeToken token)
{
    return token == TypeToken::image || token == TypeToken::text || token == TypeToken::ntext;
}

std::string rawBytes(const TypeInfo& type, const Value& value)
{
    if (const auto* blob = std::get_if<Blob>(&value))
        return blob->bytes;
    const auto& text = std::get<std::string>(value);
    return isWide(type.token) ? utf16Of(text) : codePageOf(text);
}

void putPieces(std::string& bytes, const std::string& raw)
{
    put<std::uint64_t>(bytes, raw.size());
    if (!raw.empty()) {
        put<std::uint32_t>(bytes, static_cast<std::uint32_t>(raw.size()));
        bytes += raw;
    }
    put<std::uint32_t>(bytes, 0);
}

void putVariable(std::string& bytes, const TypeInfo& type, const Value& value)
{
    const std::string raw = rawBytes(type, value);
    if (type.size == unlimited)
        return putPieces(bytes, raw);
    put<std::uint16_t>(bytes, static_cast<std::uint16_t>(raw.size()));
    bytes += raw;
}

void putLong(std::string& bytes, const TypeInfo& type, const Value& value)
{
    const std::string raw = rawBytes(type, value);
    put<std::uint8_t>(bytes, 16);
    bytes.append(16 + 8, 'p'); // text pointer and time stamp, which no client reads
    put<std::uint32_t>(bytes, static_cast<std::uint32_t>(raw.size()));
    bytes += raw;
}

void putDecimal(std::string& bytes, const TypeInfo& type, const Value& value)
{
    const auto* integer = std::get_if<std::int64_t>(&value);
    const double number = integer ? static_cast<double>(*integer) : std::get<double>(value);
    const std::int64_t scaled = std::llround(number * std::pow(10.0, type.scale));
    put<std::uint8_t>(bytes, static_cast<std::uint8_t>(type.size));
    put<std::uint8_t>(bytes, scaled >= 0 ? 1 : 0);
    put<std::int64_t>(bytes, std::llabs(scaled));
    bytes.append(type.size - 1 - sizeof scaled, '\0');
}

void putMoment(std::string& bytes, const Value& value)
{
    const Moment moment = momentOf(std::get<std::string>(value));
    put<std::uint8_t>(bytes, 8);
    put<std::int32_t>(bytes, static_cast<std::int32_t>(moment.days));
    put<std::uint32_t>(bytes, static_cast<std::uint32_t>(moment.ticks));
}

void putNull(std::string& bytes, const TypeInfo& type)
{
    if (!isVariable(type.token))
        put<std::uint8_t>(bytes, 0);
    else if (type.size == unlimited)
        put(bytes, noPieces);
    else
        put<std::uint16_t>(bytes, 0xFFFF);
}

std::string readPieces(ByteReader& reader, bool& isNull)
{
    isNull = reader.littleEndian<std::uint64_t>() == noPieces;
    std::string raw;
    while (!isNull) {
        const auto size = reader.littleEndian<std::uint32_t>();
        if (size == 0)
            break;
        raw += reader.bytes(size);
    }
    return raw;
}

std::string readRaw(ByteReader& reader, const TypeInfo& type, bool& isNull)
{
    if (isVariable(type.token) && type.size == unlimited)
        return readPieces(reader, isNull);
    std::size_t size = 0;
    if (isVariable(type.token)) {
        size = reader.littleEndian<std::uint16_t>();
        isNull = size == 0xFFFF;
    } else if (isLong(type.token)) {
        size = reader.littleEndian<std::uint32_t>();
        isNull = size == 0xFFFFFFFF;
    } else {
        size = reader.byte();
        isNull = size == 0;
    }
    return isNull ? std::string() : std::string(reader.bytes(size));
}

std::int64_t signedInteger(std::string_view raw)
{
    ByteReader reader(raw);
    switch (raw.size()) {
    case 1:
        return reader.byte(); // tinyint has no sign
    case 2:
        return reader.littleEndian<std::int16_t>();
    case 4:
        return reader.littleEndian<std::int32_t>();
    case 8:
        return reader.littleEndian<std::int64_t>();
    default:
        throw ProtocolError("integer of an unknown size");
    }
}

double decimalNumber(std::string_view raw, std::uint8_t scale)
{
    ByteReader reader(raw);
    const bool isPositive = reader.byte() != 0;
    double number = 0;
    double weight = 1;
    for (; !reader.atEnd(); weight *= 256)
        number += reader.byte() * weight;
    return (isPositive ? number : -number) / std::pow(10.0, scale);
}

Value momentValue(std::string_view raw)
{
    ByteReader reader(raw);
    const auto days = reader.littleEndian<std::int32_t>();
    return momentText({days, reader.littleEndian<std::uint32_t>()});
}

Value moment2Value(std::string_view raw, std::uint8_t scale)
{
    ByteReader reader(raw);
    std::uint64_t ticks = 0;
    const std::string_view time = reader.bytes(raw.size() - 3);
    for (std::size_t at = time.size(); at > 0; --at)
        ticks = ticks << 8U | static_cast<unsigned char>(time[at - 1]);
    const std::int64_t low = reader.littleEndian<std::uint16_t>();
    const std::int64_t days = low + (std::int64_t{reader.byte()} << 16);
    const double seconds = static_cast<double>(ticks) / std::pow(10.0, scale);
    return momentText({days - daysBefore1900, std::llround(seconds * ticksPerSecond)});
}

double floatNumber(std::string_view raw)
{
    ByteReader reader(raw);
    if (raw.size() == 4)
        return std::bit_cast<float>(reader.littleEndian<std::uint32_t>());
    return std::bit_cast<double>(reader.littleEndian<std::uint64_t>());
}

} // namespace

std::string typeName(const TypeInfo& type)
{
    const auto sized = [&](const char* name, std::uint32_t unit) {
        return std::string(name) + "(" + (type.size == unlimited ? "max" : std::to_string(type.size / unit)) +
               ")";
    };
    switch (type.token) {
    case TypeToken::image:
        return "image";
    case TypeToken::text:
        return "text";
    case TypeToken::ntext:
        return "ntext";
    case TypeToken::intN:
        return type.size == 8 ? "bigint" : type.size == 2 ? "smallint" : "int";
    case TypeToken::bitN:
        return "bit";
    case TypeToken::floatN:
        return "float";
    case TypeToken::datetimeN:
        return "datetime";
    case TypeToken::datetime2N:
        return "datetime2(" + std::to_string(type.scale) + ")";
    case TypeToken::varbinary:
        return sized("varbinary", 1);
    case TypeToken::varchar:
        return sized("varchar", 1);
    case TypeToken::nvarchar:
        return sized("nvarchar", 2);
    case TypeToken::decimalN:
    case TypeToken::numericN:
        break;
    }
    return "decimal(" + std::to_string(type.precision) + "," + std::to_string(type.scale) + ")";
}

void putTypeInfo(std::string& bytes, const TypeInfo& type)
{
    put(bytes, type.token);
    if (isVariable(type.token))
        put<std::uint16_t>(bytes, static_cast<std::uint16_t>(type.size));
    else if (isLong(type.token))
        put<std::uint32_t>(bytes, 0x7FFFFFFF);
    else
        put<std::uint8_t>(bytes, static_cast<std::uint8_t>(type.size));
    if (type.token == TypeToken::decimalN) {
        put(bytes, type.precision);
        put(bytes, type.scale);
    }
    if (isText(type.token))
        bytes += chineseCollation;
}

TypeInfo readTypeInfo(ByteReader& reader)
{
    TypeInfo type;
    type.token = static_cast<TypeToken>(reader.byte());
    if (type.token == TypeToken::datetime2N) {
        type.scale = reader.byte();
        return type;
    }
    if (isVariable(type.token))
        type.size = reader.littleEndian<std::uint16_t>();
    else if (isLong(type.token))
        type.size = reader.littleEndian<std::uint32_t>();
    else
        type.size = reader.byte();
    if (type.token == TypeToken::decimalN || type.token == TypeToken::numericN) {
        type.precision = reader.byte();
        type.scale = reader.byte();
    }
    if (isText(type.token))
        reader.bytes(chineseCollation.size());
    return type;
}

void putValue(std::string& bytes, const TypeInfo& type, const Value& value)
{
    if (std::holds_alternative<std::monostate>(value))
        return putNull(bytes, type);
    switch (type.token) {
    case TypeToken::intN:
        put<std::uint8_t>(bytes, static_cast<std::uint8_t>(type.size));
        return putBytes(bytes, static_cast<std::uint64_t>(std::get<std::int64_t>(value)), type.size);
    case TypeToken::floatN: {
        const auto* integer = std::get_if<std::int64_t>(&value);
        const double number = integer ? static_cast<double>(*integer) : std::get<double>(value);
        put<std::uint8_t>(bytes, 8);
        return put(bytes, std::bit_cast<std::uint64_t>(number));
    }
    case TypeToken::decimalN:
        return putDecimal(bytes, type, value);
    case TypeToken::datetimeN:
        return putMoment(bytes, value);
    case TypeToken::image:
        return putLong(bytes, type, value);
    default:
        return putVariable(bytes, type, value);
    }
}

Value readValue(ByteReader& reader, const TypeInfo& type)
{
    bool isNull = false;
    const std::string raw = readRaw(reader, type, isNull);
    if (isNull)
        return std::monostate();
    switch (type.token) {
    case TypeToken::intN:
    case TypeToken::bitN:
        return signedInteger(raw);
    case TypeToken::floatN:
        return floatNumber(raw);
    case TypeToken::decimalN:
    case TypeToken::numericN:
        return decimalNumber(raw, type.scale);
    case TypeToken::datetimeN:
        return momentValue(raw);
    case TypeToken::datetime2N:
        return moment2Value(raw, type.scale);
    case TypeToken::image:
    case TypeToken::varbinary:
        return Blob{raw};
    case TypeToken::varchar:
    case TypeToken::text:
        return utf8OfCodePage(raw);
    case TypeToken::nvarchar:
    case TypeToken::ntext:
        return utf8OfUtf16(raw);
    }
    throw ProtocolError("value of an unknown type");
}

} // namespace selfreport::tds
