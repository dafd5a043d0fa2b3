#pragma once
#include <concepts>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Appends a text as a part of an .xlsx file holds it. What XML cannot hold (control characters, U+FFFE,
/// U+FFFF) becomes "_xHHHH_", and a text that looks like that is kept apart from it; bytes that are no UTF-8
/// become U+FFFD.
/// @param inAttribute  between double quotes, where line ends and tabs would count as blanks
void appendXml(std::string& xml, std::string_view text, bool inAttribute = false);

/// Appends a number with a point, as short as it comes back the same; an exponent only below 1e-5 and from
/// 1e15 on.
void appendNumberText(std::string& xml, double number);

/// Writes elements one behind the other; every start tag gets its end.
class XmlWriter {
public:
    using Sink = std::function<void(std::string_view)>;

    /// @param sink  takes what was written, piece by piece; none: take() gives all
    explicit XmlWriter(Sink sink = {})
        : m_sink(std::move(sink))
    {
    }

    /// Begins an element. The name must live until it is closed.
    XmlWriter& open(std::string_view name);
    /// Only directly behind open().
    XmlWriter& attribute(std::string_view name, std::string_view text);
    XmlWriter& attribute(std::string_view name, const char* text)
    {
        return attribute(name, std::string_view(text));
    }
    XmlWriter& attribute(std::string_view name, double number);
    XmlWriter& attribute(std::string_view name, std::integral auto number)
    {
        return plainAttribute(name, std::to_string(number));
    }
    /// Content of the element. Blanks at the ends of a text are kept where keepBlanks() stands before it.
    XmlWriter& text(std::string_view text);
    XmlWriter& text(double number);
    /// Says that blanks at the ends of this text, the element's only one, belong to it.
    XmlWriter& keepBlanks(std::string_view text);
    /// Content that is XML already.
    XmlWriter& raw(std::string_view xml);
    XmlWriter& close();
    /// An element that holds one text.
    XmlWriter& leaf(std::string_view name, std::string_view content)
    {
        return open(name).keepBlanks(content).text(content).close();
    }

    /// Hands the rest to the sink.
    void flush();
    std::string take() { return std::move(m_xml); }

private:
    XmlWriter& plainAttribute(std::string_view name, std::string_view value);
    void beginAttribute(std::string_view name);
    void content();

    Sink m_sink;
    std::string m_xml;
    std::vector<std::string_view> m_open;
    bool m_inTag = false; ///< a start tag still takes attributes
};

} // namespace spreadsheet
