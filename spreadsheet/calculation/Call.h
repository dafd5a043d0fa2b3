#pragma once
#include "spreadsheet/calculation/Effort.h"
#include "spreadsheet/calculation/stretches.h"
#include "spreadsheet/formula/Operand.h"
#include "spreadsheet/values/coercion.h"

#include <cmath>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

struct FunctionDescriptor;
class LookupIndexes;

/// Where a formula is evaluated.
struct EvaluationPlace {
    const Book& book;
    int sheet = 1; ///< index from 1
    CellAddress cell;
    LookupIndexes* indexes = nullptr; ///< of this recalculation; null outside of one
    Effort* effort = nullptr; ///< of this recalculation; null outside of one, where nothing is bounded
    int textDepth = 0;        ///< how many INDIRECT lie around it, through names whose formulas use it
    int rows = 1;             ///< of the array formula that begins in the cell
    int columns = 1;

    /// See Effort; false: the cell is given up.
    bool spend(std::size_t elements) const { return !effort || effort->spend(elements); }
    bool goesOn() const { return !effort || effort->goesOn(); }
};

/// Numbers of an argument in ascending order, kept between the calls of a function for the elements of an
/// array, to all of which the argument is the same.
struct KeptNumbers {
    bool filled = false;
    std::vector<double> sorted;
};

/// The arguments of one function call, read by number from 0. Reading sticks at the first error:
/// after it everything reads as zero, `failed()` is true and the function returns `error()`.
class Call {
public:
    Call(const EvaluationPlace& place, std::span<const Operand> arguments, bool wantsArray = false,
         KeptNumbers* kept = nullptr)
        : m_place(place)
        , m_arguments(arguments)
        , m_wantsArray(wantsArray)
        , m_kept(kept)
    {
    }

    const EvaluationPlace& place() const { return m_place; }
    std::size_t count() const { return m_arguments.size(); }
    const Operand& operator[](std::size_t argument) const { return m_arguments[argument]; }
    /// True where the result is gone through element by element: ROW of a range gives all its rows there
    /// and the first one elsewhere.
    bool wantsArray() const { return m_wantsArray; }
    /// Null where a function is called once.
    KeptNumbers* kept() const { return m_kept; }
    /// Handed over and not left empty between two commas.
    bool given(std::size_t argument) const
    {
        return argument < m_arguments.size() && !m_arguments[argument].isMissing();
    }

    /// A single value: a range is intersected with the cell's row or column, an array gives its first
    /// element, an argument left out is empty. Errors are values here and do not stick.
    Value value(std::size_t argument) const;

    // Coerced as operators do: empty is 0, a text that reads as a number counts as it. With `otherwise`
    // an argument that was not handed over reads as that; one left empty between commas reads as 0.
    double number(std::size_t argument);
    double number(std::size_t argument, double otherwise);
    /// The same for a value of any origin; an error stays one.
    Value numberOf(const Value& value) const;
    /// Cut off toward zero; #NUM! beyond 32 bits.
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

    /// Counts work that takes as long as making so many elements of an array; the call fails with #VALUE!
    /// where that is more than its cell may spend.
    void pay(double elements);

    /// Calls `use(std::span<const double>)` with every number that counts in a sum: numbers in ranges
    /// and arrays (texts and truth values there are passed over unless the text counts as a number),
    /// and a value handed over directly, coerced. Sticks at errors.
    template <typename Use>
    void eachNumbers(std::size_t argument, Use&& use);
    /// The same, one by one.
    template <typename Use>
    void eachNumber(std::size_t argument, Use&& use);
    /// All numbers of all arguments from `first` on, in order.
    std::vector<double> numbers(std::size_t first = 0);
    /// The numbers of one argument in the order of rows, as series in time are read.
    std::vector<double> numbersByRows(std::size_t argument);
    /// Calls `use(const Value&)` for every value of an argument in the order of rows, empty cells of
    /// the sheet's used part included; beyond it everything is empty and is not gone through.
    template <typename Use>
    void eachValue(std::size_t argument, Use&& use) const;
    /// The dense cells of a reference, gaps left out, column by column.
    template <typename Use>
    void eachStretch(std::size_t argument, Use&& use) const;

    /// Rows and columns of a range or array; 1 × 1 for a value.
    int rows(std::size_t argument) const;
    int columns(std::size_t argument) const;
    /// The element of a range or array, counted from 0; for a value itself.
    Value element(std::size_t argument, int row, int column) const;

private:
    template <typename Use>
    void eachNumbersOfArray(const Array& array, Use&& use);

    const EvaluationPlace& m_place;
    std::span<const Operand> m_arguments;
    bool m_wantsArray;
    KeptNumbers* m_kept;
    std::optional<CellError> m_error;
};

/// What a call comes to, evaluated here and nowhere else: #NUM! where something in it throws, #VALUE!
/// where memory does not suffice. What else is no std::exception, such as a cancellation, goes on.
Operand answer(const FunctionDescriptor& function, Call& call);

/// The single value of an operand as operators and cells need it, see Call::value.
inline Value singleValue(const Operand& operand, const EvaluationPlace& place)
{
    return operand.isValue() ? operand.value() : Call(place, std::span(&operand, 1)).value(0);
}

/// One cell of a book; nothing there reads as empty.
Value cellValue(const Book& book, int sheet, CellAddress cell);

/// The used part of an area: what lies beyond the sheet's last stored row and column is cut off. Where
/// nothing is left, the bottom lies above the top.
CellRange usedPart(const Book& book, const Area& area);

/// A number as a result: #NUM! if it is infinite or none.
inline Operand checked(double number)
{
    return std::isfinite(number) ? Operand(number) : Operand(CellError::num);
}

inline Operand truth(bool value)
{
    return Value::boolean(value);
}

/// An argument as a result: cells stay cells, one left empty between commas is 0.
inline Operand passedOn(const Call& call, std::size_t argument)
{
    return call[argument].isMissing() ? Operand(0.0) : call[argument];
}

template <typename Use>
void Call::eachStretch(std::size_t argument, Use&& use) const
{
    const Operand& operand = m_arguments[argument];
    if (operand.isArea())
        return forEachStretch(m_place.book, operand.area(), use);
    for (const Area& area : operand.areas())
        forEachStretch(m_place.book, area, use);
}

template <typename Use>
void Call::eachNumbersOfArray(const Array& array, Use&& use)
{
    std::vector<double> row;
    for (int r = 0; r < array.rows(); ++r) {
        row.clear();
        for (int c = 0; c < array.columns(); ++c) {
            const Value& value = array.at(r, c);
            if (value.isError())
                return void(fail(value.error()));
            if (const auto number = countedNumber(value))
                row.push_back(*number);
        }
        constexpr double slower = 4; // than from a column's block
        pay(slower * array.columns());
        if (failed())
            return;
        use(std::span<const double>(row));
    }
}

template <typename Use>
void Call::eachNumbers(std::size_t argument, Use&& use)
{
    if (failed())
        return;
    const Operand& operand = m_arguments[argument];
    if (operand.isReference()) {
        eachStretch(argument, [&](const CellStretch& stretch) {
            pay(stretch.count);
            if (failed())
                return false;
            if (const auto error = useNumbers(stretch, use))
                fail(*error);
            return !failed();
        });
    } else if (operand.isArray()) {
        eachNumbersOfArray(operand.array(), use);
    } else {
        const double single = number(argument);
        if (!failed())
            use(std::span<const double>(&single, 1));
    }
}

template <typename Use>
void Call::eachNumber(std::size_t argument, Use&& use)
{
    eachNumbers(argument, [&](std::span<const double> numbers) {
        for (const double number : numbers)
            use(number);
    });
}

template <typename Use>
void Call::eachValue(std::size_t argument, Use&& use) const
{
    const Operand& operand = m_arguments[argument];
    for (const Area& area : operand.areas()) {
        const CellRange used = usedPart(m_place.book, area);
        for (int row = used.top; row <= used.bottom; ++row) {
            for (int column = used.left; column <= used.right; ++column)
                use(cellValue(m_place.book, area.sheet, {column, row}));
        }
    }
    if (operand.isArray()) {
        for (int row = 0; row < operand.array().rows(); ++row) {
            for (int column = 0; column < operand.array().columns(); ++column)
                use(operand.array().at(row, column));
        }
    } else if (!operand.isReference()) {
        use(value(argument));
    }
}

} // namespace spreadsheet
