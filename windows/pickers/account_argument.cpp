#include "windows/pickers/account_argument.h"

#include "fetch/ledger_query.h"
#include "text/ascii.h"

#include <QString>

namespace selfreport {

namespace {

bool sameText(const std::string& left, const std::string& right)
{
    return QString::fromStdString(left).compare(QString::fromStdString(right), Qt::CaseInsensitive) == 0;
}

/// "from:to", or one of them where the other is missing or the same.
std::string rangeText(const std::string& typedFrom, const std::string& typedTo)
{
    const std::string from(ascii::trimmed(typedFrom, " "));
    const std::string to(ascii::trimmed(typedTo, " "));
    if (to.empty() || sameText(from, to))
        return from;
    return from.empty() ? to : from + ':' + to;
}

std::string codesInWords(const std::vector<std::string>& codes)
{
    if (codes.empty())
        return "不限";
    return codes.size() > 1 ? " " + codes[0] + " 至 " + codes[1] : " " + codes[0];
}

} // namespace

std::string accountArgument(const std::string& from, const std::string& to,
                            std::span<const ItemCondition> rows)
{
    std::string argument = rangeText(from, to);
    for (const ItemCondition& row : rows) {
        if (!row.className.empty())
            argument += '|' + row.className;
        argument += '|' + rangeText(row.from, row.to);
    }
    return argument;
}

std::string argumentInWords(const std::string& argument)
{
    if (argument.empty())
        return {};
    const AccountExpression expression = parseAccountExpression(argument);
    std::string words = "科目" + codesInWords(expression.codes);
    for (const ItemQualifier& qualifier : expression.qualifiers)
        words += "," + (qualifier.className.empty() ? "(无类别)" : qualifier.className) +
                 codesInWords(qualifier.codes);
    return words;
}

} // namespace selfreport
