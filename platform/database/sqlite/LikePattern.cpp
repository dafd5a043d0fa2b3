#include "platform/database/sqlite/LikePattern.h"

#include "platform/database/dialect/chinese_collation.h"

#include <algorithm>

namespace selfreport {

namespace {

/// Characters of a pattern with the weights that they compare by.
struct PatternReader {
    std::string_view text;
    std::size_t at = 0;

    bool atEnd() const { return at >= text.size(); }

    /// The wildcard character here if it is one of ASCII, else 0. Full-width signs are no wildcards.
    char peek() const { return static_cast<unsigned char>(text[at]) < 128 ? text[at] : '\0'; }

    std::uint32_t weight() { return nextWeight(text, at); }
};

/// Reads one set behind its "[". False if it never ends.
template <typename Set>
bool readSet(PatternReader& reader, Set& set)
{
    set.negated = !reader.atEnd() && reader.peek() == '^';
    if (set.negated)
        reader.weight();
    while (!reader.atEnd() && reader.peek() != ']') {
        const std::uint32_t first = reader.weight();
        std::uint32_t last = first;
        const std::size_t next = reader.at + 1;
        if (next < reader.text.size() && reader.peek() == '-' && reader.text[next] != ']') {
            reader.weight();
            last = reader.weight();
        }
        set.ranges.push_back({first, last});
    }
    const bool ends = !reader.atEnd();
    reader.weight();
    return ends;
}

} // namespace

LikePattern::LikePattern(std::string_view pattern, char32_t escape)
{
    using Kind = Element::Kind;
    PatternReader reader{pattern};
    const auto add = [&](Kind kind, std::uint32_t weight) {
        m_elements.push_back({kind, weight, false, {}});
    };
    while (!reader.atEnd()) {
        const char sign = reader.peek();
        if (escape != 0 && static_cast<char32_t>(sign) == escape) {
            reader.weight();
            if (!reader.atEnd())
                add(Kind::literal, reader.weight());
        } else if (sign == '%' || sign == '_') {
            reader.weight();
            add(sign == '%' ? Kind::many : Kind::one, 0);
        } else if (sign == '[') {
            reader.weight();
            add(Kind::set, 0);
            m_matchesNothing = !readSet(reader, m_elements.back()) || m_matchesNothing;
        } else {
            add(Kind::literal, reader.weight());
        }
    }
}

bool LikePattern::accepts(const Element& element, std::uint32_t weight)
{
    if (element.kind == Element::Kind::one)
        return true;
    if (element.kind == Element::Kind::literal)
        return element.weight == weight;
    const bool listed = std::ranges::any_of(
        element.ranges, [&](const Range& range) { return range.first <= weight && weight <= range.last; });
    return listed != element.negated;
}

bool LikePattern::matches(std::string_view text) const
{
    if (m_matchesNothing)
        return false;
    std::size_t at = 0;
    std::size_t element = 0;
    std::size_t lastMany = m_elements.size(); // the last "%" passed, and where the text stood then
    std::size_t retry = 0;
    for (;;) {
        if (element == m_elements.size() && onlyBlanksFrom(text, at))
            return true;
        if (element < m_elements.size() && m_elements[element].kind == Element::Kind::many) {
            lastMany = element++;
            retry = at;
            continue;
        }
        if (at < text.size() && element < m_elements.size() &&
            accepts(m_elements[element], nextWeight(text, at))) {
            ++element;
            continue;
        }
        if (lastMany == m_elements.size() || retry >= text.size())
            return false;
        nextWeight(text, retry); // let "%" take one character more
        at = retry;
        element = lastMany + 1;
    }
}

} // namespace selfreport
