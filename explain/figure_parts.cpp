#include "explain/figure_parts.h"

#include "fetch/plain_arguments.h"
#include "fetch/quoted_text.h"
#include "fetch/RunRecord.h"
#include "platform/database/dialect/acct_kinds.h"
#include "platform/database/session/Recordset.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace selfreport {

using spreadsheet::CallPlace;
using spreadsheet::LinearForm;
using spreadsheet::LinearTerm;

namespace {

/// The periods that count for the fetch type: "1–12".
std::string periodsText(const LedgerArguments& call, AcctPeriods counted)
{
    if (counted == AcctPeriods::last)
        return call.lastPeriod;
    if (counted == AcctPeriods::first || call.firstPeriod == call.lastPeriod)
        return call.firstPeriod;
    return call.firstPeriod + "–" + call.lastPeriod;
}

/// "借方发生额，2025 年 1–3 期，USD"
std::string measureText(const LedgerArguments& call)
{
    const AcctKind* kind = acctKindOf(trimmed(call.fetchType));
    std::string text = kind ? std::string(kind->name) : "取数类型" + quoted(call.fetchType);
    text += "，" + call.year + " 年 " + periodsText(call, kind ? kind->periods : AcctPeriods::all) + " 期";
    return text + (call.currency.empty() ? "" : "，" + call.currency);
}

std::optional<double> numberOf(const spreadsheet::Value& value)
{
    if (value.isNumber())
        return value.number();
    if (value.isText())
        return spreadsheet::parseNumber(value.text().view());
    return std::nullopt;
}

const RecordedCall* recordedCall(const spreadsheet::Workbook& workbook, const RunRecord& record,
                                 const LinearTerm& term)
{
    const auto calls =
        record.callsOf({workbook.sheet(term.cell.sheet).id(), {term.cell.column, term.cell.row}});
    const auto at = static_cast<std::size_t>(term.call);
    return term.call >= 0 && at < calls.size() ? &calls[at] : nullptr;
}

/// Cells in a circle are not evaluated, so what they call is not made. They show what broken references do,
/// but a formula with one of these makes its calls.
bool isInCircle(const spreadsheet::Workbook& workbook, const RunRecord& record, const CallPlace& cell)
{
    const spreadsheet::Value value = workbook.sheet(cell.sheet).value({cell.column, cell.row});
    return record.isOfCalculation() && value.isError() && value.error() == spreadsheet::CellError::ref;
}

void addRemark(DrillNode& node, const std::string& remark)
{
    if (!remark.empty())
        node.remark += (node.remark.empty() ? "" : "；") + remark;
}

/// @param reads  see figureParts
void describe(DrillNode& node, const RecordedCall& call, bool reads)
{
    if (call.ledger) {
        const LedgerArguments used = plainArguments(call.argumentsUsed());
        node.item = used.account;
        node.basis += " " + measureText(used);
        node.call = used;
        node.isFault = !call.ledger->answer.failure.empty();
    } else if (call.reference) {
        const ReportReference& read = call.reference->reference;
        node.item = "报表" + quoted(read.report) + " " + read.cell;
        if (reads)
            node.reference = read;
    } else {
        node.item = std::string(call.function);
        addRemark(node, "参数有错");
    }
    node.isUnknown = call.state() == CallState::missing;
    node.isFault = node.isFault || node.isUnknown;
    if (call.remarks.empty() && call.state() != CallState::value)
        addRemark(node, std::string(stateName(call.state())));
    for (const Explanation& remark : call.remarks)
        addRemark(node, remark.reason);
}

DrillNode partOf(const spreadsheet::Workbook& workbook, const RunRecord& record, const LinearTerm& term,
                 bool isLinear, bool reads)
{
    DrillNode node;
    node.cell = term.cell;
    node.place = record.followed(term.cell);
    node.basis = placeText(workbook, term.cell);
    node.factor = isLinear ? term.coefficient : 1;
    if (term.isByCondition)
        node.remark = "按当前条件";
    if (const RecordedCall* call = recordedCall(workbook, record, term)) {
        node.amount = numberOf(call->value);
        describe(node, *call, reads);
    } else {
        node.item = "取数";
        addRemark(node, isInCircle(workbook, record, term.cell) ? "单元格循环引用，没有取数"
                                                                : "上次计算没有这次取数");
    }
    return node;
}

} // namespace

std::string placeText(const spreadsheet::Workbook& workbook, const CallPlace& cell)
{
    return workbook.sheet(cell.sheet).name() + "!" + spreadsheet::cellName({cell.column, cell.row});
}

bool isRecorded(const spreadsheet::Workbook& workbook, const RunRecord& record, const CallPlace& cell)
{
    return std::ranges::all_of(
        spreadsheet::linearForm(workbook.book(), cell, record.answers()).terms, [&](const LinearTerm& term) {
            return recordedCall(workbook, record, term) || isInCircle(workbook, record, term.cell);
        });
}

DrillNode figureParts(const spreadsheet::Workbook& workbook, const RunRecord& record, const CallPlace& cell,
                      bool reads)
{
    const LinearForm form = spreadsheet::linearForm(workbook.book(), cell, record.answers());
    DrillNode root;
    root.cell = cell;
    root.place = record.followed(cell);
    root.item = placeText(workbook, cell);
    root.amount = numberOf(workbook.sheet(cell.sheet).value({cell.column, cell.row}));
    root.isOpen = true;
    double sum = form.constant;
    for (const LinearTerm& term : form.terms) {
        root.parts.push_back(partOf(workbook, record, term, form.isLinear, reads));
        sum += root.parts.back().factor * root.parts.back().amount.value_or(0);
    }
    if (!form.isLinear) {
        root.remark = form.nonlinearFunction.empty()
                          ? "单元格不是数，没有合计"
                          : "非线性（" + form.nonlinearFunction + "），只列出取数，没有合计";
        return root;
    }
    if (form.terms.empty() && workbook.sheet(cell.sheet).value({cell.column, cell.row}).isEmpty()) {
        root.remark = "单元格是空的";
        return root;
    }
    if (form.constant != 0 || form.terms.empty())
        root.parts.push_back({.item = "常数", .basis = "公式中的数和手工录入的数", .amount = form.constant});
    for (const spreadsheet::LinearRounding& rounding : form.roundings) {
        root.parts.push_back(
            {.item = "舍入差", .basis = "舍入到 " + numberText(rounding.step), .amount = rounding.amount});
        sum += rounding.amount;
    }
    root.sum = sum;
    root.whole = root.amount;
    if (root.difference() == 0)
        root.sum = root.whole; // else half a fen may be shown up here and down there
    return root;
}

} // namespace selfreport
