#pragma once
#include "spreadsheet/values/CellError.h"
#include "spreadsheet/values/Text.h"

#include <cstdint>
#include <string_view>

namespace spreadsheet {

/// The codes are stored in the content file: never renumber.
enum class ValueKind : std::uint8_t { empty = 0, number, text, boolean, error };

/// What a cell holds or a formula yields: nothing, a number, a text, a truth value or an error.
class Value {
public:
    Value() = default;
    Value(double number)
        : m_kind(ValueKind::number)
        , m_number(number)
    {
    }
    Value(CellError error)
        : m_kind(ValueKind::error)
        , m_error(error)
    {
    }
    Value(Text text)
        : m_kind(ValueKind::text)
        , m_text(text.detach())
    {
    }
    /// Kept apart from the constructors, so that no pointer turns into a truth value by accident.
    static Value boolean(bool truth)
    {
        Value value;
        value.m_kind = ValueKind::boolean;
        value.m_boolean = truth;
        return value;
    }
    static Value text(std::string_view text) { return Value(Text(text)); }

    Value(const Value& other) noexcept
        : m_kind(other.m_kind)
        , m_bits(other.m_bits)
    {
        if (isText())
            Text::retain(m_text);
    }
    Value(Value&& other) noexcept
        : m_kind(std::exchange(other.m_kind, ValueKind::empty))
        , m_bits(other.m_bits)
    {
    }
    Value& operator=(Value other) noexcept
    {
        std::swap(m_kind, other.m_kind);
        std::swap(m_bits, other.m_bits);
        return *this;
    }
    ~Value()
    {
        if (isText())
            Text::release(m_text);
    }

    ValueKind kind() const { return m_kind; }
    bool isEmpty() const { return m_kind == ValueKind::empty; }
    bool isNumber() const { return m_kind == ValueKind::number; }
    bool isText() const { return m_kind == ValueKind::text; }
    bool isBoolean() const { return m_kind == ValueKind::boolean; }
    bool isError() const { return m_kind == ValueKind::error; }

    /// Each only for its own kind.
    double number() const { return m_number; }
    bool boolean() const { return m_boolean; }
    CellError error() const { return m_error; }
    Text text() const { return Text::share(m_text); }
    std::string_view textView() const
    {
        return m_text ? std::string_view(m_text->bytes(), m_text->size) : std::string_view();
    }

    /// Same kind and same content; texts letter by letter.
    friend bool operator==(const Value& a, const Value& b);

private:
    ValueKind m_kind = ValueKind::empty;
    union {
        std::uint64_t m_bits = 0;
        double m_number;
        bool m_boolean;
        CellError m_error;
        Text::Body* m_text;
    };
};

} // namespace spreadsheet
