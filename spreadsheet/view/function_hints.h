#pragma once
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

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

/// What an argument of a function may be.
struct ArgumentChoice {
    QString text;    ///< written as a text, in quotation marks
    QString meaning; ///< shown beside it; may be empty
};

/// Names and hints of the functions of the language and of those that the program registers.
class FunctionHints {
public:
    using Choices = std::function<const std::vector<ArgumentChoice>&()>;

    /// Argument names and help of a registered function, which the workbook does not know.
    /// @param arguments  separated by ","
    void describe(const QString& name, const QString& arguments, const QString& help);

    /// What may stand for an argument (from 0), asked when the cursor comes there.
    void offer(const QString& function, int argument, Choices choices);

    /// Functions whose names begin so, letter case ignored, registered ones first.
    QStringList namesBeginning(const QString& beginning, const Workbook& workbook) const;
    std::optional<FunctionHint> hint(const QString& name, const Workbook& workbook) const;
    /// The choices for an argument whose text or meaning holds what is typed, those that begin so first.
    std::vector<ArgumentChoice> choices(const QString& function, int argument, const QString& typed) const;

private:
    std::map<QString, FunctionHint> m_described;          ///< by name in capitals
    std::map<std::pair<QString, int>, Choices> m_offered; ///< likewise, and by argument
};

/// Cuts "数值1,[数值2,…]" at the commas outside brackets.
QStringList argumentNames(const QString& arguments);

} // namespace spreadsheet
