#include "spreadsheet/view/function_hints.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

namespace {

const CustomFunctions::Entry* registeredFunction(const QString& name, const Workbook& workbook)
{
    const CustomFunctions& customs = workbook.formulas().customs();
    for (int number = 0; number < customs.size(); ++number) {
        const auto& entry = customs[number];
        if (entry.handler && QString::fromUtf8(entry.name).compare(name, Qt::CaseInsensitive) == 0)
            return &entry;
    }
    return nullptr;
}

} // namespace

QStringList argumentNames(const QString& arguments)
{
    QStringList names;
    QString name;
    int brackets = 0;
    for (const QChar c : arguments) {
        brackets += (c == '[') - (c == ']');
        if (c == ',' && brackets == 0) {
            names << name;
            name.clear();
        } else {
            name += c;
        }
    }
    if (!name.isEmpty())
        names << name;
    return names;
}

QString FunctionHint::richText(int argument) const
{
    int current = argument;
    if (!arguments.isEmpty() && argument >= arguments.size() && arguments.back().contains(QChar(0x2026)))
        current = static_cast<int>(arguments.size()) - 1;
    QStringList shown;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString plain = arguments[i].toHtmlEscaped();
        shown << (i == current ? "<b>" + plain + "</b>" : plain);
    }
    const QString call = name.toHtmlEscaped() + "(" + shown.join(", ") + ")";
    return help.isEmpty() ? call : call + "<br>" + help.toHtmlEscaped();
}

void FunctionHints::describe(const QString& name, const QString& arguments, const QString& help)
{
    m_described[name.toUpper()] = {name, argumentNames(arguments), help};
}

void FunctionHints::offer(const QString& function, int argument, Choices choices)
{
    m_offered[{function.toUpper(), argument}] = std::move(choices);
}

std::vector<ArgumentChoice> FunctionHints::choices(const QString& function, int argument,
                                                   const QString& typed) const
{
    const auto offered = m_offered.find({function.toUpper(), argument});
    if (offered == m_offered.end())
        return {};
    std::vector<ArgumentChoice> fitting = offered->second();
    std::erase_if(fitting, [&](const ArgumentChoice& choice) {
        return !choice.text.contains(typed, Qt::CaseInsensitive) &&
               !choice.meaning.contains(typed, Qt::CaseInsensitive);
    });
    std::ranges::stable_partition(fitting, [&](const ArgumentChoice& choice) {
        return choice.text.startsWith(typed, Qt::CaseInsensitive);
    });
    return fitting;
}

QStringList FunctionHints::namesBeginning(const QString& beginning, const Workbook& workbook) const
{
    QStringList names;
    const CustomFunctions& customs = workbook.formulas().customs();
    for (int number = 0; number < customs.size(); ++number) {
        const QString name = QString::fromUtf8(customs[number].name);
        if (customs[number].handler && name.startsWith(beginning, Qt::CaseInsensitive))
            names << name;
    }
    for (const FunctionDescriptor* function : allFunctions()) {
        const QString name = QString::fromUtf8(function->name);
        if (name.startsWith(beginning, Qt::CaseInsensitive))
            names << name;
    }
    return names;
}

std::optional<FunctionHint> FunctionHints::hint(const QString& name, const Workbook& workbook) const
{
    if (const auto described = m_described.find(name.toUpper()); described != m_described.end())
        return described->second;
    if (const auto* custom = registeredFunction(name, workbook)) {
        FunctionHint hint{QString::fromUtf8(custom->name), {}, {}};
        for (int parameter = 1; parameter <= custom->parameterCount; ++parameter)
            hint.arguments << QStringLiteral("参数%1").arg(parameter);
        return hint;
    }
    const FunctionDescriptor* function = findFunction(name.toStdString());
    if (!function)
        return std::nullopt;
    return FunctionHint{QString::fromUtf8(function->name),
                        argumentNames(QString::fromUtf8(function->arguments)),
                        QString::fromUtf8(function->help)};
}

} // namespace spreadsheet
