#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace selfreport {

/// A pattern of `like`, ready for many texts: "%" any run of characters, "_" one character, "[a-f0]" one of a
/// set, "[^...]" one outside it; everything else stands for itself, compared as by compareChinese().
/// Trailing blanks of the text count only where the pattern asks for them.
class LikePattern {
public:
    /// @param escape  the character that takes the next one literally; 0 for none
    explicit LikePattern(std::string_view pattern, char32_t escape = 0);

    bool matches(std::string_view text) const;

private:
    struct Range {
        std::uint32_t first, last;
    };
    struct Element {
        enum class Kind { literal, one, many, set } kind;
        std::uint32_t weight = 0;
        bool negated = false;
        std::vector<Range> ranges;
    };
    static bool accepts(const Element& element, std::uint32_t weight);

    std::vector<Element> m_elements;
    bool m_matchesNothing = false; ///< a set that never ends
};

} // namespace selfreport
