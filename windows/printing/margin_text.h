#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

/// The text of a margin field: one digit, a point and two digits, "_" for an empty place. Inches.
class MarginText {
public:
    static constexpr std::string_view empty = "_.__";

    const std::string& text() const { return m_text; }
    /// Takes a whole text of that form, other texts not. True if it was taken.
    [[nodiscard]] bool setText(std::string_view text);
    int cursor() const { return m_cursor; } ///< 0 to 4, before that character
    void setCursor(int place);

    /// A digit goes to the cursor's place or, from the point, to the one behind it; a point moves behind the
    /// point. Nothing else is taken. A point typed behind digits that ran over the point without one, as in
    /// 10.5, shows that they were meant before it: the field is emptied rather than made 1.05.
    /// False if the character was refused.
    [[nodiscard]] bool type(char c);
    /// Empties the place before the cursor, which moves there.
    void eraseBefore();
    /// Empties the cursor's place, which stays.
    void eraseAfter();
    /// Empties the places from..to, `to` excluded.
    void erase(int from, int to);
    /// Takes a number such as "1.25", "1" or ".5" that fits. Others change nothing. True if it fitted.
    [[nodiscard]] bool paste(std::string_view text);

private:
    bool typePoint();

    std::string m_text{empty};
    int m_cursor = 0;
    bool m_ranOver = false; ///< the last digit typed at the point went behind it
};

/// Inches as a margin field shows them, "0.60"; nothing if they do not fit it (0.00 to 9.99).
std::optional<std::string> marginText(double inches);

/// A field's text with every "_" as "0".
std::string filledMargin(std::string_view text);

/// The inches of a filled text; 0 if it is no number.
double marginInches(std::string_view text);

} // namespace selfreport
