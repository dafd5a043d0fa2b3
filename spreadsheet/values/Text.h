#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace spreadsheet {

/// An immutable UTF-8 text, shared by counting references (one thread only). Copies cost nothing.
class Text {
public:
    struct Body {
        std::uint32_t references = 1;
        std::uint32_t size = 0;
        bool countsAsNumber = false; ///< see Text::countedAs
        double number = 0;
        // `size` bytes follow
        const char* bytes() const { return reinterpret_cast<const char*>(this + 1); }
    };

    Text() = default; ///< the empty text, without a body
    explicit Text(std::string_view text);
    Text(const Text& other) noexcept
        : m_body(other.m_body)
    {
        retain(m_body);
    }
    Text(Text&& other) noexcept
        : m_body(std::exchange(other.m_body, nullptr))
    {
    }
    Text& operator=(Text other) noexcept
    {
        std::swap(m_body, other.m_body);
        return *this;
    }
    ~Text() { release(m_body); }

    /// A text that counts as `number` where ranges are summed (a figure handed back as it is displayed).
    static Text countedAs(std::string_view text, double number);

    std::string_view view() const
    {
        return m_body ? std::string_view(m_body->bytes(), m_body->size) : std::string_view();
    }
    bool empty() const { return !m_body || m_body->size == 0; }
    /// True while another Text shares the body.
    bool isShared() const { return m_body && m_body->references > 1; }
    bool countsAsNumber() const { return m_body && m_body->countsAsNumber; }
    double number() const { return m_body ? m_body->number : 0; }

    /// For dense cell storage, which keeps bodies beside numbers in the same eight bytes.
    Body* detach() { return std::exchange(m_body, nullptr); }
    static Text adopt(Body* body) { return Text(body); }
    static Text share(Body* body)
    {
        retain(body);
        return Text(body);
    }
    static void retain(Body* body) noexcept
    {
        if (body)
            ++body->references;
    }
    static void release(Body* body) noexcept
    {
        if (body && --body->references == 0)
            destroy(body);
    }

    friend bool operator==(const Text& a, const Text& b)
    {
        return a.m_body == b.m_body || a.view() == b.view();
    }

private:
    explicit Text(Body* body)
        : m_body(body)
    {
    }
    static Body* create(std::string_view text);
    static void destroy(Body* body) noexcept;

    Body* m_body = nullptr;
};

} // namespace spreadsheet
