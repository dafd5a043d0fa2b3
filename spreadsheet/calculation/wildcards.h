#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A text pattern: "?" stands for one character, "*" for any number of them, "~" takes the meaning
/// from the "?", "*" or "~" behind it. Letter case and width are ignored.
class WildcardPattern {
public:
    explicit WildcardPattern(std::string_view pattern);

    /// False if the pattern is a plain text, which `literal` gives folded.
    bool hasWildcards() const { return m_hasWildcards; }
    std::string literal() const;

    /// True if the whole text fits.
    bool matches(std::string_view text) const;
    /// First byte of the first place from byte `from` on where the pattern fits; nothing if there is none.
    std::optional<std::size_t> find(std::string_view text, std::size_t from) const;

private:
    std::u32string m_pattern; ///< folded, with signs of its own for "?" and "*"
    bool m_hasWildcards = false;
};

} // namespace spreadsheet
