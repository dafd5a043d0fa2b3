#pragma once
#include "spreadsheet/engine/CellBlock.h"
#include "spreadsheet/formula/Operand.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace spreadsheet {

class Workbook;
class LookupIndexes;

/// Where a formula is evaluated.
struct EvaluationPlace {
    Workbook& workbook;
    int sheet = 1; ///< index from 1
    CellAddress cell;
    LookupIndexes* indexes = nullptr; ///< of this recalculation; null outside of one
};

/// A stretch of cells of one column, as they lie in memory.
struct CellStretch {
    const Payload* payloads;
    const ValueKind* kinds;
    int count;
    int firstRow;
    int column;
};

/// The arguments of one function call, read by number from 0. Reading sticks at the first error:
/// after it everything reads as zero, `failed()` is true and the function returns `error()`.
class Call {
public:
    Call(const EvaluationPlace& place, std::span<const Operand> arguments)
        : m_place(place)
        , m_arguments(arguments)
    {
    }

    const EvaluationPlace& place() const { return m_place; }
    std::size_t count() const { return m_arguments.size(); }
    const Operand& operator[](std::size_t argument) const { return m_arguments[argument]; }
    /// Handed over and not left empty between two commas.
    bool given(std::size_t argument) const
    {
        return argument < m_arguments.size() && !m_arguments[argument].isMissing();
    }

    /// A single value: a range is intersected with the cell's row or column, an array gives its first
    /// element, an argument left out is empty. Errors are values here and do not stick.
    Value value(std::size_t argument) const;

    // Coerced as operators do: empty is 0, a text that reads as a number counts as it.
    double number(std::size_t argument);
    double number(std::size_t argument, double otherwise); ///< `otherwise` if not given
    /// Truncated toward minus infinity for `floored`, toward zero otherwise; #NUM! beyond 32 bits.
    int integer(std::size_t argument);
    int integer(std::size_t argument, int otherwise);
    std::string text(std::size_t argument);
    std::string text(std::size_t argument, std::string_view otherwise);
    bool logical(std::size_t argument);
    bool logical(std::size_t argument, bool otherwise);

    bool failed() const { return m_error.has_value(); }
    CellError error() const { return *m_error; }
    /// Makes the call fail; the first reason stays.
    CellError fail(CellError error)
    {
        if (!m_error)
            m_error = error;
        return *m_error;
    }

    /// Every number that counts in a sum: numbers in ranges and arrays (texts and truth values there
    /// are passed over), and a value handed over directly, coerced. Sticks at errors.
    void eachNumber(std::size_t argument, const std::function<void(double)>& use);
    /// All numbers of all arguments from `first` on, in order.
    std::vector<double> numbers(std::size_t first = 0);
    /// Every value of an argument in the order of rows, empty cells included where the range is no
    /// larger than the sheet's used part (beyond it everything is empty and is not gone through).
    void eachValue(std::size_t argument, const std::function<void(const Value&)>& use);
    /// The dense cells of a reference, gaps left out, column by column.
    void eachStretch(std::size_t argument, const std::function<void(const CellStretch&)>& use) const;

    /// Rows and columns of a range or array; 1 × 1 for a value.
    int rows(std::size_t argument) const;
    int columns(std::size_t argument) const;
    /// The element of a range or array, counted from 0; for a value itself.
    Value element(std::size_t argument, int row, int column) const;

private:
    const EvaluationPlace& m_place;
    std::span<const Operand> m_arguments;
    std::optional<CellError> m_error;
};

// Coercion, one rule for operators and functions.

/// A value as a number: empty 0, truth values 1 and 0, a text that reads as a number, percentage, date
/// or time counts as it; any other text is #VALUE!.
Value toNumber(const Value& value);
/// A value as text: numbers in general form, TRUE and FALSE; errors stay errors.
Value toText(const Value& value);
/// A value as truth value: numbers other than 0, the texts "TRUE" and "FALSE".
Value toBoolean(const Value& value);

/// Less than 0, 0 or more than 0, in the order numbers, texts (letter case ignored), FALSE, TRUE.
/// Empty equals 0, "" and FALSE. Not for errors.
int compareValues(const Value& a, const Value& b);

/// One cell of a workbook; nothing there reads as empty.
Value cellValue(const Workbook& workbook, int sheet, CellAddress cell);

/// The used part of an area: what lies beyond the sheet's last stored row and column is cut off.
CellRange usedPart(const Workbook& workbook, const Area& area);

/// A number of day and time that a text names ("2026-12-31", "2026/12/31 8:30", "12:30:15",
/// "2026年12月31日"); nothing if it names none.
std::optional<double> parseDateTime(std::string_view text);

/// Letter case and full or half width folded, for comparing texts.
std::string foldedText(std::string_view text);

/// Compensated sum in several lanes: cancelling amounts end in 0.
double compensatedSum(std::span<const double> numbers);

/// A compensated sum that takes its numbers one after the other.
class RunningSum {
public:
    void add(double number)
    {
        const double sum = m_sum + number;
        const double part = sum - m_sum;
        m_error += (m_sum - (sum - part)) + (number - part);
        m_sum = sum;
    }
    double total() const;

private:
    double m_sum = 0;
    double m_error = 0;
};

} // namespace spreadsheet
