#pragma once
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Goes through XML from front to back without making a tree of it, for parts with more elements than anybody
/// wants in memory. Escapes are undone in place. Names count without the prefix of their namespace.
class XmlScanner {
public:
    enum class Kind { start, text, end, done };
    struct Attribute {
        std::string_view name, value;
    };

    /// The text must outlive the object and what it hands out.
    explicit XmlScanner(std::span<char> text)
        : m_at(text.data())
        , m_end(text.data() + text.size())
    {
    }

    /// @throws ContentError where elements do not stand in each other as they should, or too deep
    Kind next();
    /// Of the element that next() came to.
    std::string_view name() const { return m_name; }
    /// Of the start tag that next() came to.
    std::span<const Attribute> attributes() const { return m_attributes; }
    std::string_view text() const { return m_text; }

    /// Behind a start tag: goes to the element's end.
    /// @return the text that stands in it, without that of elements in it
    std::string_view content();

private:
    Kind startTag();
    Kind endTag();
    Kind run();
    bool skipMarkup();
    void attribute();
    void skipBlanks();
    char* find(std::string_view sign) const;

    char* m_at;
    char* m_end;
    std::vector<std::string_view> m_open; ///< with prefixes
    std::vector<Attribute> m_attributes;
    std::string_view m_name, m_text;
    bool m_isClosed = false; ///< the start tag was the end tag too
};

} // namespace spreadsheet
