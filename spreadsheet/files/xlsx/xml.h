#pragma once
#include <pugixml.hpp>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

class Archive;

/// A part of an archive, parsed. Names of elements are compared without the prefix of their namespace,
/// which differs by program.
class XmlPart {
public:
    /// Null if there is no such part. @throws ContentError if it is no well-formed XML, or holds elements
    /// without measure or nested without end
    /// @param apart  an element whose content stays out of the tree: too many elements
    static std::optional<XmlPart> read(Archive& archive, std::string_view path, std::string_view apart = {});
    pugi::xml_node root() const { return m_document->document_element(); }
    /// What stands between the tags of the element that was to be left out.
    std::span<char> apart() { return std::span(m_text).subspan(m_apart, m_apartSize); }

private:
    std::vector<char> m_text, m_rest; ///< the document points into the latter if anything was left out
    std::size_t m_apart = 0, m_apartSize = 0;
    std::unique_ptr<pugi::xml_document> m_document;
};

/// Name without prefix.
std::string_view localName(const char* name);
pugi::xml_node childNamed(pugi::xml_node node, std::string_view name);
/// An attribute by its name without prefix.
pugi::xml_attribute attributeNamed(pugi::xml_node node, std::string_view name);

/// Calls `visit(child)` for each child element of that name.
template <typename Visit>
void eachChild(pugi::xml_node node, std::string_view name, Visit visit)
{
    for (const pugi::xml_node child : node.children()) {
        if (localName(child.name()) == name)
            visit(child);
    }
}

/// Texts of all "t" elements in a text with runs; phonetic ones left out.
std::string richText(pugi::xml_node node);
/// What an element or attribute says as text. "_xHHHH_" stands for a UTF-16 unit, often one that XML cannot
/// hold; the character 0 is left out.
std::string textOf(std::string_view text);
std::string textOf(pugi::xml_node node);
std::string textOf(pugi::xml_attribute attribute);
/// A number as it stands in the file; `otherwise` if there is none.
double numberOf(pugi::xml_attribute attribute, double otherwise = 0);
/// A decimal comma counts as a point: programs write one under the locale of some countries.
std::optional<double> fileNumber(std::string_view text);
/// "1", "true" and "on" are true.
bool isTrue(std::string_view value);
bool isTrue(pugi::xml_attribute attribute, bool otherwise = false);

} // namespace spreadsheet
