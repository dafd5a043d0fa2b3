#include "spreadsheet/files/xlsx/Relations.h"

#include "spreadsheet/files/xlsx/xml.h"

namespace spreadsheet {

namespace {

/// "xl/worksheets" and "../comments1.xml" make "xl/comments1.xml"; a leading slash begins at the root.
std::string joinedPath(std::string folder, std::string_view target)
{
    if (target.starts_with('/'))
        return std::string(target.substr(1));
    while (target.starts_with("../") || target.starts_with("./")) {
        if (target.starts_with("../")) {
            const std::size_t slash = folder.rfind('/');
            folder = slash == std::string::npos ? std::string() : folder.substr(0, slash);
        }
        target.remove_prefix(target.find('/') + 1);
    }
    return folder.empty() ? std::string(target) : folder + "/" + std::string(target);
}

} // namespace

Relations::Relations(Archive& archive, std::string_view part)
{
    const std::size_t slash = part.rfind('/');
    const std::string folder(slash == std::string_view::npos ? std::string_view() : part.substr(0, slash));
    const std::string_view file = slash == std::string_view::npos ? part : part.substr(slash + 1);
    const auto xml =
        XmlPart::read(archive, (folder.empty() ? "" : folder + "/") + "_rels/" + std::string(file) + ".rels");
    if (!xml)
        return;
    eachChild(xml->root(), "Relationship", [&](pugi::xml_node node) {
        if (std::string_view(attributeNamed(node, "TargetMode").value()) == "External")
            return;
        m_targets[attributeNamed(node, "Id").value()] = {
            attributeNamed(node, "Type").value(), joinedPath(folder, attributeNamed(node, "Target").value())};
    });
}

std::optional<std::string> Relations::byId(std::string_view id) const
{
    const auto found = m_targets.find(id);
    return found == m_targets.end() ? std::nullopt : std::optional(found->second.path);
}

std::vector<std::string> Relations::allOfKind(std::string_view ending) const
{
    std::vector<std::string> paths;
    for (const auto& [id, target] : m_targets) {
        if (target.kind.ends_with(ending))
            paths.push_back(target.path);
    }
    return paths;
}

std::optional<std::string> Relations::byKind(std::string_view ending) const
{
    const std::vector<std::string> paths = allOfKind(ending);
    return paths.empty() ? std::nullopt : std::optional(paths.front());
}

} // namespace spreadsheet
