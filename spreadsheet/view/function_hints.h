#pragma once
#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace spreadsheet {

class Workbook;

/// How a function is called.
struct FunctionHint {
    QString name;
    QStringList
        arguments; ///< "[…]" may be left out; the last one stands for all further ones if it holds "…"
    QString help;  ///< one line

    /// "SUM(<b>数值1</b>, [数值2,…])" with that argument (from 0) in bold, and the help below, as rich text.
    QString richText(int argument) const;
};

/// Names and hints of the functions of the language and of those that the program registers.
class FunctionHints {
public:
    /// Argument names and help of a registered function, which the workbook does not know.
    /// @param arguments  separated by ","
    void describe(const QString& name, const QString& arguments, const QString& help);

    /// Functions whose names begin so, letter case ignored, registered ones first.
    QStringList namesBeginning(const QString& beginning, const Workbook& workbook) const;
    std::optional<FunctionHint> hint(const QString& name, const Workbook& workbook) const;

private:
    std::map<QString, FunctionHint> m_described; ///< by name in capitals
};

/// Cuts "数值1,[数值2,…]" at the commas outside brackets.
QStringList argumentNames(const QString& arguments);

} // namespace spreadsheet
