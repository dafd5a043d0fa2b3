#pragma once
#include "spreadsheet/calculation/wildcards.h"
#include "spreadsheet/cells/CellBlock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace spreadsheet {

/// What a text reads as where it is compared with numbers; `from1904`: how dates in it count.
std::optional<double> numberOfText(std::string_view text, bool from1904);

/// A condition of SUMIF, COUNTIF and their kind: ">=1000", "<>现金", "55*", 12, TRUE, "#N/A", "=".
/// Texts ignore letter case and width; "=" alone means empty cells, "<>" alone cells that are not
/// empty, an empty text both empty cells and empty texts. An empty value is the number 0.
class Criterion {
public:
    enum class Comparison : std::uint8_t { equal, notEqual, less, lessEqual, greater, greaterEqual };
    enum class Kind : std::uint8_t {
        number, ///< equal to numbers, and to texts that read as that number; unequal to all but numbers
        text,
        pattern, ///< text with wildcards
        boolean,
        error,
        empty,       ///< "=", "<>"
        emptyOrText, ///< the empty text
    };

    /// `from1904`: how dates in the condition and in texts count.
    Criterion(const Value& condition, bool from1904);

    Comparison comparison() const { return m_comparison; }
    Kind kind() const { return m_kind; }
    double number() const { return m_number; }
    const std::string& text() const { return m_text; } ///< folded
    const WildcardPattern& pattern() const { return m_pattern; }
    bool boolean() const { return m_number != 0; }

    bool matches(ValueKind kind, const Payload& payload) const;
    bool matches(const Value& value) const;
    bool matchesEmpty() const { return matches(ValueKind::empty, Payload{}); }

private:
    void readOperand(std::string_view operand, bool hasOperator);
    bool equals(ValueKind kind, const Payload& payload) const;
    /// Less than 0, 0 or more than 0; nothing if the cell holds another kind of value.
    std::optional<int> order(ValueKind kind, const Payload& payload) const;

    bool m_from1904;
    Comparison m_comparison = Comparison::equal;
    Kind m_kind = Kind::number;
    double m_number = 0;
    CellError m_error = CellError::null;
    std::string m_text;
    WildcardPattern m_pattern{""};
};

} // namespace spreadsheet
