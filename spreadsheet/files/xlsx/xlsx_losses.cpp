#include "spreadsheet/files/xlsx/xlsx_losses.h"

#include "spreadsheet/files/xlsx/Archive.h"
#include "spreadsheet/files/xlsx/Relations.h"
#include "spreadsheet/files/xlsx/xml.h"

namespace spreadsheet {

namespace {

/// Elements of a worksheet. Where `each` is empty the element counts itself.
constexpr struct {
    std::string_view element, each;
    std::string_view loss;
} sheetLosses[] = {
    {"conditionalFormatting", "cfRule", "{} 条条件格式没有引入"},
    {"hyperlinks", "hyperlink", "{} 处超链接没有引入,文字保留"},
    {"autoFilter", "", "{} 处自动筛选没有引入"},
    {"scenarios", "scenario", "{} 个方案没有引入"},
    {"protectedRanges", "protectedRange", "{} 个允许编辑的区域没有引入"},
    {"picture", "", "{} 张工作表的背景图片没有引入"},
    {"oleObjects", "", "{} 张工作表的嵌入对象没有引入"},
    {"controls", "", "{} 张工作表的控件没有引入"},
    {"dataConsolidate", "", "{} 处合并计算的设置没有引入"},
};

/// Elements of later versions, which stand in extensions.
constexpr struct {
    std::string_view element, loss;
} extensionLosses[] = {
    {"sparkline", "{} 个迷你图没有引入"},
    {"conditionalFormatting", "{} 条条件格式没有引入"},
    {"dataValidation", "{} 条数据有效性没有引入"},
    {"slicer", "{} 个切片器没有引入"},
};

constexpr std::string_view drawingLosses[][2] = {
    {"pic", "{} 张图片没有引入"},   {"graphicFrame", "{} 个图表没有引入"},
    {"sp", "{} 个形状没有引入"},    {"cxnSp", "{} 个形状没有引入"},
    {"grpSp", "{} 个形状没有引入"}, {"AlternateContent", "{} 个形状没有引入"},
};

void countPlainElement(pugi::xml_node node, Warnings& warnings)
{
    const std::string_view name = localName(node.name());
    for (const auto& row : sheetLosses) {
        if (name != row.element)
            continue;
        if (row.each.empty())
            warnings.count(row.loss);
        else
            eachChild(node, row.each, [&](pugi::xml_node) { warnings.count(row.loss); });
    }
}

void countExtensions(pugi::xml_node list, Warnings& warnings)
{
    struct Walker : pugi::xml_tree_walker {
        explicit Walker(Warnings& target)
            : warnings(target)
        {
        }
        bool for_each(pugi::xml_node& node) override
        {
            for (const auto& [element, loss] : extensionLosses) {
                if (localName(node.name()) == element)
                    warnings.count(loss);
            }
            return true;
        }
        Warnings& warnings;
    } walker(warnings);
    list.traverse(walker);
}

void countSheetSettings(pugi::xml_node worksheet, Warnings& warnings)
{
    if (childNamed(childNamed(worksheet, "sheetPr"), "tabColor"))
        warnings.count("{} 张表的标签颜色没有引入");
    const pugi::xml_node headers = childNamed(worksheet, "headerFooter");
    if (isTrue(attributeNamed(headers, "differentFirst")) ||
        isTrue(attributeNamed(headers, "differentOddEven")))
        warnings.count("{} 张表首页或偶数页自己的页眉页脚没有引入");
    eachChild(childNamed(worksheet, "cols"), "col", [&](pugi::xml_node column) {
        if (attributeNamed(column, "outlineLevel").as_int() > 0)
            warnings.count("{} 处列的分级显示没有引入");
    });
}

} // namespace

void countSheetLosses(pugi::xml_node worksheet, Warnings& warnings)
{
    for (const pugi::xml_node node : worksheet.children()) {
        const std::string_view name = localName(node.name());
        if (name == "AlternateContent") { // of which the first choice is what later programs see
            for (const pugi::xml_node inner : childNamed(node, "Choice").children())
                countPlainElement(inner, warnings);
        } else if (name == "extLst") {
            countExtensions(node, warnings);
        } else {
            countPlainElement(node, warnings);
        }
    }
    countSheetSettings(worksheet, warnings);
}

void countDrawingLosses(Archive& archive, const Relations& relations, Warnings& warnings)
{
    for (const std::string& path : relations.allOfKind("/drawing")) {
        const auto xml = XmlPart::read(archive, path);
        if (!xml)
            continue;
        for (const pugi::xml_node anchor : xml->root().children()) {
            for (const pugi::xml_node node : anchor.children()) {
                for (const auto& [element, loss] : drawingLosses) {
                    if (localName(node.name()) == element)
                        warnings.count(loss);
                }
            }
        }
    }
    if (const auto pivots = relations.allOfKind("/pivotTable"); !pivots.empty())
        warnings.count("{} 个数据透视表只引入了单元格的值", static_cast<int>(pivots.size()));
}

void countBookLosses(const Relations& relations, Warnings& warnings)
{
    if (relations.byKind("/vbaProject"))
        warnings.add("宏没有引入");
    if (const auto links = relations.allOfKind("/externalLink"); !links.empty())
        warnings.count("与 {} 个其他文件的链接没有引入", static_cast<int>(links.size()));
}

} // namespace spreadsheet
