#pragma once
#include <string>
#include <string_view>

namespace spreadsheet {

/// Texts in one of the encodings from before Unicode.
class CodePage {
public:
    /// By Windows number (936, 1252, …); a number that is not known counts as 1252.
    explicit CodePage(int number);
    /// By the name that iconv knows ("GB18030").
    explicit CodePage(const char* name)
        : m_name(name)
    {
    }

    /// UTF-8; bytes that mean nothing become U+FFFD.
    std::string decoded(std::string_view bytes) const;
    /// From UTF-8; characters that the encoding lacks become "?".
    std::string encoded(std::string_view utf8) const;

private:
    std::string m_name;
};

} // namespace spreadsheet
