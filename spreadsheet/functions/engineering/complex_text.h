#pragma once
#include <complex>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A complex number with the letter of its imaginary unit, "i" or "j".
struct ComplexNumber {
    std::complex<double> value;
    char unit = 0; ///< 0: none was written
};

/// Reads "3+4i", "-j", "2.5", "1E-3-i", " 3 - i "; nothing if it reads as none, as an empty text.
std::optional<ComplexNumber> parseComplex(std::string_view text);

/// The shortest form with up to 15 digits a part: "3+4i", "-i", "2".
std::string complexText(std::complex<double> value, char unit);

} // namespace spreadsheet
