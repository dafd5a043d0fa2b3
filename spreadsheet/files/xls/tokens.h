#pragma once
#include <cstdint>

/// Numbers of formula tokens. Those from 0x20 on come in three classes: as listed (reference), 0x20 more
/// (value) and 0x40 more (array). docs/xls.md lists all.
namespace spreadsheet::xls {

enum Token : std::uint8_t {
    tokenExpression = 0x01, ///< the formula stands in a shared or array formula
    tokenTable = 0x02,
    // 0x03 to 0x14: see operator_table.h
    tokenBrackets = 0x15,
    tokenMissing,
    tokenText,
    tokenExtended,
    tokenAttribute,
    tokenSheet,
    tokenEndSheet,
    tokenError,
    tokenBoolean,
    tokenInteger,
    tokenNumber,
    tokenArray = 0x20,
    tokenFunction = 0x21,
    tokenVariableFunction = 0x22,
    tokenName = 0x23,
    tokenReference = 0x24,
    tokenArea = 0x25,
    tokenMemoryArea = 0x26,
    tokenMemoryError = 0x27,
    tokenMemoryNone = 0x28,
    tokenMemoryFunction = 0x29,
    tokenBrokenReference = 0x2A,
    tokenBrokenArea = 0x2B,
    tokenRelativeReference = 0x2C,
    tokenRelativeArea = 0x2D,
    tokenMemoryAreaName = 0x2E,
    tokenMemoryNoneName = 0x2F,
    tokenExternName = 0x39,
    tokenReference3d = 0x3A,
    tokenArea3d = 0x3B,
    tokenBrokenReference3d = 0x3C,
    tokenBrokenArea3d = 0x3D,
};

inline constexpr std::uint8_t valueClass = 0x20;
inline constexpr std::uint8_t arrayClass = 0x40;

/// The token's number without its class.
constexpr std::uint8_t baseToken(std::uint8_t token)
{
    return token < 0x20 ? token : static_cast<std::uint8_t>((token & 0x1F) | 0x20);
}

/// Bits of tokenAttribute's first byte.
enum Attribute : std::uint8_t {
    attributeVolatile = 0x01,
    attributeIf = 0x02,
    attributeChoose = 0x04,
    attributeSkip = 0x08,
    attributeSum = 0x10,
    attributeAssign = 0x20,
    attributeSpace = 0x40,
};

/// Bits of a reference's column word.
inline constexpr std::uint16_t relativeColumn = 0x4000;
inline constexpr std::uint16_t relativeRow = 0x8000;

/// Number of the function whose name stands before its arguments.
inline constexpr int functionByName = 255;

} // namespace spreadsheet::xls
