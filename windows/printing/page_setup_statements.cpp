#include "windows/printing/page_setup_statements.h"

#include <charconv>

namespace selfreport {

namespace {

/// The shortest plain decimal form, with a point whatever the host's locale.
std::string plainDecimal(double number)
{
    std::array<char, 400> digits; // the largest number has 309 of them
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed).ptr;
    return {digits.data(), end};
}

} // namespace

std::string loadPageSetupStatement(std::int64_t report)
{
    return "select isnull(fTop,0.60) as fTop,isnull(fRight,0.60) as fRight"
           ",isnull(fLeft,0.60) as fLeft,isnull(fBottom,0.60) as fBottom,isnull(fDirection,0) as fDirection "
           " from tblCWSelfReport where noid=" +
           std::to_string(report);
}

std::string savePageSetupStatement(std::int64_t report, const std::array<double, 4>& inches, bool portrait)
{
    const auto& [left, right, top, bottom] = inches;
    std::string statement = "update tblCWSelfReport set fTop=";
    statement.append(plainDecimal(top)).append(",fBottom=").append(plainDecimal(bottom));
    statement.append(",fLeft=").append(plainDecimal(left)).append(",fRight=").append(plainDecimal(right));
    statement.append(portrait ? ",fDirection=1 " : ",fDirection=0 ");
    return statement.append(" where noid=").append(std::to_string(report));
}

std::string saveHeaderStatement(std::int64_t report, bool footer)
{
    const std::string column = footer ? "fFooter" : "fHeader";
    return "update tblCWSelfReport set " + column + "=?  where noid=" + std::to_string(report);
}

std::string storeWholePageSetupStatement(std::int64_t report)
{
    return "update tblCWSelfReport set fTop=?,fBottom=?,fLeft=?,fRight=?,fDirection=?,fHeader=?,fFooter=?"
           "  where noid=" +
           std::to_string(report);
}

} // namespace selfreport
