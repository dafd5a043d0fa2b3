#pragma once
#include "spreadsheet/values/Value.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Where a custom function is called from.
struct CallPlace {
    int sheet = 1; ///< index of the calling cell's sheet, from 1
    int column = 1;
    int row = 1;
    friend auto operator<=>(const CallPlace&, const CallPlace&) = default;
};

/// Status of a parameter: usable, or the reason why not. An empty quoted text is usable and
/// converts to 0; a text that is no number is not usable as an integer.
enum class ParameterStatus : std::int16_t { usable = 0, missing = 1, error = 2, noNumber = 3 };

/// One call of a registered function while its cell is evaluated.
class FunctionCall {
public:
    FunctionCall(std::string_view name, CallPlace place, std::span<const Value> parameters)
        : m_name(name)
        , m_place(place)
        , m_parameters(parameters)
    {
    }

    /// The name as it was registered.
    std::string_view name() const { return m_name; }
    CallPlace place() const { return m_place; }
    int column() const { return m_place.column; }
    int row() const { return m_place.row; }
    int parameterCount() const { return static_cast<int>(m_parameters.size()); }

    /// Parameters count from 1; one that does not exist is `missing`.
    ParameterStatus parameterStatus(int parameter) const;
    /// As `parameterStatus`, and `noNumber` for a text that is no whole number.
    ParameterStatus integerStatus(int parameter) const;
    /// The parameter as text: numbers in their shortest form, nothing for an unusable one.
    std::string parameterText(int parameter) const;
    /// The parameter as a whole number (fractions cut off); 0 for an empty text or an unusable one.
    std::int64_t parameterInteger(int parameter) const;

    void setResult(double number) { m_result = Value(number); }
    /// A text that wholly reads as a figure, be it grouped, a percentage or an amount of money, also counts
    /// as that number in ranges.
    void setResult(std::string_view text);
    void setResult(CellError error) { m_result = Value(error); }
    void setStatus(int status) { m_status = status; }
    /// Leaves the cell's value and shown text as they are.
    void decline() { m_declined = true; }
    /// Asks that the calling cell gets the number type with `decimals` places. It is done after the
    /// recalculation, is no undo step and does not mark the workbook changed.
    void requestNumberType(int decimals) { m_requestedDecimals = decimals; }

    const std::optional<Value>& result() const { return m_result; }
    int status() const { return m_status; }
    bool declined() const { return m_declined; }
    std::optional<int> requestedDecimals() const { return m_requestedDecimals; }

private:
    const Value* parameter(int number) const;

    std::string_view m_name;
    CallPlace m_place;
    std::span<const Value> m_parameters;
    std::optional<Value> m_result;
    std::optional<int> m_requestedDecimals;
    int m_status = 0;
    bool m_declined = false;
};

using FunctionHandler = std::function<void(FunctionCall&)>;

/// A call that is certain to be made in the coming wave of a recalculation.
struct PreparedCall {
    std::string_view name;
    CallPlace place;
    std::vector<Value> parameters;
    /// A handler that already knows the call's value may put it here, so that calls which take it
    /// as a parameter can be prepared too. The call itself is made all the same.
    std::optional<Value> expected;

    FunctionCall asCall() const { return FunctionCall(name, place, parameters); }
};

/// Handed each wave of calls before it is evaluated, so that a handler can fetch many in one go.
using PrepareHook = std::function<void(std::span<PreparedCall>)>;

/// Asked again and again while a recalculation runs; true stops it.
using PauseHook = std::function<bool()>;

} // namespace spreadsheet
