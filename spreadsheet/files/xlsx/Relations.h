#pragma once
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

class Archive;

/// What a part of an archive names other parts by.
class Relations {
public:
    /// @param part  "xl/workbook.xml"; "" for the archive itself
    Relations(Archive& archive, std::string_view part);

    /// The path of a part by the id that the naming part uses.
    std::optional<std::string> byId(std::string_view id) const;
    /// The first one whose kind ends so ("/styles").
    std::optional<std::string> byKind(std::string_view ending) const;
    /// All of them.
    std::vector<std::string> allOfKind(std::string_view ending) const;

private:
    struct Target {
        std::string kind, path;
    };
    std::map<std::string, Target, std::less<>> m_targets;
};

} // namespace spreadsheet
