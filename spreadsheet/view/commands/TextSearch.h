#pragma once
#include "spreadsheet/calculation/wildcards.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

struct SearchOptions {
    bool matchCase = false; ///< letter case and width
    bool wholeCell = false;
    bool wildcards = false; ///< "?" one character, "*" any number, "~" before them takes their meaning
};

/// Looks for one text in many. Wildcards ignore letter case and width whatever is asked for.
class TextSearch {
public:
    TextSearch(std::string_view what, SearchOptions options);

    bool finds(std::string_view text) const;
    /// The text with every place that fits replaced; nothing if none does. With wildcards, "*" takes as
    /// little as it can.
    std::optional<std::string> replaced(std::string_view text, std::string_view replacement) const;
    /// False only if no number, date or amount as a cell shows it can fit.
    bool mayBeInFigure() const { return m_mayBeInFigure; }

private:
    struct Place {
        std::size_t begin, end;
    };
    std::optional<Place> next(std::string_view text, std::size_t from) const;
    std::optional<std::size_t> findSmall(std::string_view text, std::size_t from) const;

    SearchOptions m_options;
    std::string m_what; ///< folded unless letter case matters
    WildcardPattern m_pattern;
    bool m_usePattern = false;
    bool m_mayBeInFigure = true;
    char m_firstSmall = 0, m_firstCapital = 0;
};

} // namespace spreadsheet
