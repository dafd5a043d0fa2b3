#include "spreadsheet/files/xlsx/Relations.h"

#include "spreadsheet/files/xlsx/xml.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// "xl/worksheets" and "../comments1.xml" make "xl/comments1.xml"; a leading slash begins at the root. Steps
/// up and "." may stand anywhere (RFC 3986, 5.2.4).
std::string joinedPath(std::string_view folder, std::string_view target)
{
    std::string path;
    const std::string joined =
        (target.starts_with('/') ? "" : std::string(folder) + "/") + std::string(target);
    for (std::string_view rest = joined; !rest.empty();) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string_view step = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (step == "..")
            path.resize(path.find('/') == std::string::npos ? 0 : path.rfind('/'));
        else if (!step.empty() && step != ".")
            path += (path.empty() ? "" : "/") + std::string(step);
    }
    return path;
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
