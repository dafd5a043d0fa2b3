#include "spreadsheet/calculation/criteria.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/values/chinese_order.h"
#include "spreadsheet/values/folding.h"
#include "text/ascii.h"

#include <array>

namespace spreadsheet {

// A condition is read once and compared with up to a million cells, so everything that can be decided from
// its text alone (kind, operator, folded letters, wildcards) is decided in the constructor, and the
// comparison works on a cell's kind and bytes without making a value of them.

namespace {

using Comparison = Criterion::Comparison;

/// Longer operators first, so that ">=" is not read as ">".
constexpr std::array<std::pair<std::string_view, Comparison>, 6> operators{{{">=", Comparison::greaterEqual},
                                                                            {"<=", Comparison::lessEqual},
                                                                            {"<>", Comparison::notEqual},
                                                                            {">", Comparison::greater},
                                                                            {"<", Comparison::less},
                                                                            {"=", Comparison::equal}}};

std::string_view viewOf(const Payload& payload)
{
    return payload.text ? std::string_view(payload.text->bytes(), payload.text->size) : std::string_view();
}

std::optional<double> countedNumber(ValueKind kind, const Payload& payload)
{
    if (kind == ValueKind::number)
        return payload.number;
    if (kind == ValueKind::text && payload.text && payload.text->countsAsNumber)
        return payload.text->number;
    return std::nullopt;
}

/// Compares without building the folded text as long as the letters are ASCII.
bool equalsFolded(std::string_view text, const std::string& folded)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x80)
            return foldedText(text) == folded;
        if (i >= folded.size() || ascii::lower(text[i]) != folded[i])
            return false;
    }
    return text.size() == folded.size();
}

int sign(double difference)
{
    return (difference > 0) - (difference < 0);
}

} // namespace

std::optional<double> numberOfText(std::string_view text, bool from1904)
{
    if (!from1904)
        return numberOfText(text);
    const Value number = toNumber(Value::text(text), from1904);
    return number.isNumber() ? std::optional(number.number()) : std::nullopt;
}

Criterion::Criterion(const Value& condition, bool from1904)
    : m_from1904(from1904)
{
    switch (condition.kind()) {
    case ValueKind::empty:
        break;
    case ValueKind::number:
        m_number = condition.number();
        break;
    case ValueKind::boolean:
        m_kind = Kind::boolean;
        m_number = condition.boolean();
        break;
    case ValueKind::error:
        m_kind = Kind::error;
        m_error = condition.error();
        break;
    case ValueKind::text: {
        std::string_view operand = condition.textView();
        for (const auto& [text, comparison] : operators) {
            if (!operand.starts_with(text))
                continue;
            m_comparison = comparison;
            readOperand(operand.substr(text.size()), true);
            return;
        }
        readOperand(operand, false);
        break;
    }
    }
}

void Criterion::readOperand(std::string_view operand, bool hasOperator)
{
    if (operand.empty()) {
        m_kind = hasOperator ? Kind::empty : Kind::emptyOrText;
        return;
    }
    if (const Value number = toNumber(Value::text(operand), m_from1904); number.isNumber()) {
        m_number = number.number();
        return;
    }
    if (const auto error = parseErrorText(operand)) {
        m_kind = Kind::error;
        m_error = *error;
        return;
    }
    m_text = foldedText(operand);
    if (m_text == "true" || m_text == "false") {
        m_kind = Kind::boolean;
        m_number = m_text == "true";
        return;
    }
    m_kind = Kind::text;
    if (m_comparison != Comparison::equal && m_comparison != Comparison::notEqual)
        return; // an order knows no wildcards
    m_pattern = WildcardPattern(operand);
    if (m_pattern.hasWildcards())
        m_kind = Kind::pattern;
    else
        m_text = m_pattern.literal();
}

bool Criterion::matches(ValueKind kind, const Payload& payload) const
{
    if (m_comparison == Comparison::equal)
        return equals(kind, payload);
    if (m_comparison == Comparison::notEqual)
        return m_kind == Kind::number ? countedNumber(kind, payload) != m_number : !equals(kind, payload);
    const auto found = order(kind, payload);
    if (!found)
        return false;
    switch (m_comparison) {
    case Comparison::less:
        return *found < 0;
    case Comparison::lessEqual:
        return *found <= 0;
    case Comparison::greater:
        return *found > 0;
    default:
        return *found >= 0;
    }
}

bool Criterion::matches(const Value& value) const
{
    Payload payload{};
    switch (value.kind()) {
    case ValueKind::empty:
        break;
    case ValueKind::number:
        payload.number = value.number();
        break;
    case ValueKind::text: {
        Text text = value.text();
        payload.text = text.detach();
        const Text owner = Text::adopt(payload.text);
        return matches(ValueKind::text, payload);
    }
    case ValueKind::boolean:
        payload.boolean = value.boolean();
        break;
    case ValueKind::error:
        payload.error = value.error();
        break;
    }
    return matches(value.kind(), payload);
}

bool Criterion::equals(ValueKind kind, const Payload& payload) const
{
    switch (m_kind) {
    case Kind::number:
        if (const auto number = countedNumber(kind, payload))
            return *number == m_number;
        return kind == ValueKind::text && numberOfText(viewOf(payload), m_from1904) == m_number;
    case Kind::text:
        return kind == ValueKind::text && equalsFolded(viewOf(payload), m_text);
    case Kind::pattern:
        return kind == ValueKind::text && m_pattern.matches(viewOf(payload));
    case Kind::boolean:
        return kind == ValueKind::boolean && payload.boolean == boolean();
    case Kind::error:
        return kind == ValueKind::error && payload.error == m_error;
    case Kind::empty:
        return kind == ValueKind::empty;
    case Kind::emptyOrText:
        return kind == ValueKind::empty || (kind == ValueKind::text && viewOf(payload).empty());
    }
    return false;
}

std::optional<int> Criterion::order(ValueKind kind, const Payload& payload) const
{
    if (m_kind == Kind::number) {
        const auto number = countedNumber(kind, payload);
        return number ? std::optional(sign(*number - m_number)) : std::nullopt;
    }
    if (m_kind == Kind::text && kind == ValueKind::text)
        return compareTexts(viewOf(payload), m_text);
    if (m_kind == Kind::boolean && kind == ValueKind::boolean)
        return payload.boolean - boolean();
    if (m_kind == Kind::error && kind == ValueKind::error && payload.error == m_error)
        return 0;
    return std::nullopt;
}

} // namespace spreadsheet
