#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/values/case_fold.h"

#include <set>
#include <string>

namespace spreadsheet {

/// Files may have one name for several sheets, each with a meaning of its own; here a name means one thing.
/// Names of all sheets come first, so that those of one sheet give way.
class DistinctNames {
public:
    /// What the name is called here.
    /// @param sheet  number of the only sheet that it holds for; 0: all
    std::string taken(const std::string& name, int sheet, Warnings& warnings)
    {
        std::string ours = name;
        while (!m_taken.insert(foldedName(ours)).second)
            ours += "_" + std::to_string(sheet);
        if (ours != name)
            warnings.add("名称“" + name + "”在几张表中各有所指,第 " + std::to_string(sheet) +
                         " 张表的改名为“" + ours + "”");
        return ours;
    }

private:
    std::set<std::string> m_taken; ///< folded
};

} // namespace spreadsheet
