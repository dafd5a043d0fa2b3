#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace spreadsheet {

/// Cuts an HTML text into tags and the texts between them; comments and declarations are passed over.
/// Whatever stands there, it comes to an end after one pass.
class HtmlScanner {
public:
    explicit HtmlScanner(std::string_view html)
        : m_html(html)
    {
    }

    enum class Kind { text, opening, closing, end };
    Kind next();
    /// Of a text: as it stands, entities included.
    std::string_view text() const { return m_text; }
    /// Of a tag: its name in small letters.
    const std::string& name() const { return m_name; }
    /// Of an opening tag: the value with entities decoded; empty if the attribute is missing. `name` in
    /// small letters.
    std::string attribute(std::string_view name) const;
    bool hasAttribute(std::string_view name) const;
    /// Everything up to the closing tag of that name, which is passed over: for style sheets and scripts.
    std::string_view rawUntilClosing(std::string_view name);

private:
    void passOver(std::string_view end);
    Kind readTag();
    bool findAttribute(std::string_view name, std::string_view& value) const;

    std::string_view m_html;
    std::size_t m_at = 0;
    std::string_view m_text;
    std::string m_name;
    std::string_view m_attributes;
};

/// Appends a text with its entities decoded ("&lt;", "&nbsp;" as a blank, "&#20803;"); unknown ones stay.
void appendDecoded(std::string_view html, std::string& text);

} // namespace spreadsheet
