#pragma once
#include "spreadsheet/values/CellError.h"

#include <array>
#include <bit>
#include <cstdint>
#include <optional>

namespace spreadsheet {

/// Error values by their codes in .xls files, in the order of CellError.
inline constexpr std::array<std::uint8_t, 7> errorCodes{0x00, 0x07, 0x0F, 0x17, 0x1D, 0x24, 0x2A};

constexpr std::optional<CellError> errorOfCode(std::uint8_t code)
{
    for (std::size_t i = 0; i < errorCodes.size(); ++i) {
        if (errorCodes[i] == code)
            return static_cast<CellError>(i);
    }
    return std::nullopt;
}

constexpr std::uint8_t codeOfError(CellError error)
{
    return errorCodes[static_cast<std::size_t>(error)];
}

/// A number in four bytes: bit 0 divides it by 100, bit 1 says that the rest is a whole number, else it is
/// the upper half of a double.
inline double numberOfRk(std::uint32_t rk)
{
    const double number = rk & 2 ? static_cast<double>(static_cast<std::int32_t>(rk) >> 2)
                                 : std::bit_cast<double>(std::uint64_t(rk & ~3u) << 32);
    return rk & 1 ? number / 100 : number;
}

/// The number as such four bytes, if it fits exactly.
inline std::optional<std::uint32_t> rkOfNumber(double number)
{
    const auto bits = std::bit_cast<std::uint64_t>(number);
    if ((bits & 0x3'FFFF'FFFF) == 0)
        return static_cast<std::uint32_t>(bits >> 32);
    for (const std::uint32_t hundredth : {0u, 1u}) {
        const double scaled = hundredth ? number * 100 : number;
        if (!(scaled >= -536870912.0 && scaled <= 536870911.0))
            continue;
        const auto whole = static_cast<std::int32_t>(scaled);
        const std::uint32_t rk = static_cast<std::uint32_t>(whole) << 2 | 2 | hundredth;
        if (std::bit_cast<std::uint64_t>(numberOfRk(rk)) == bits)
            return rk;
    }
    return std::nullopt;
}

} // namespace spreadsheet
