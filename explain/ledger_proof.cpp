#include "explain/ledger_proof.h"

#include "explain/ledger_identities.h"
#include "explain/reading_proof.h"
#include "failures/failure_text.h"
#include "fetch/ledger_fetch.h"
#include "platform/database/Connection.h"
#include "text/amount_text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

namespace selfreport {

namespace {

using State = ProvedIdentity::State;

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> keyNames{{{"fYear", "年度"},
                                                                                 {"fPeriod", "期间"},
                                                                                 {"fNumber", "科目"},
                                                                                 {"fName", "科目名称"},
                                                                                 {"fDetailId", "项目组合"},
                                                                                 {"fcurrency", "币别"},
                                                                                 {"fvoucher", "凭证"}}};

bool isDifference(const std::string& name)
{
    return name.size() > 1 && name.front() == 'd' &&
           name.find_first_not_of("0123456789", 1) == std::string::npos;
}

std::string captionOf(const std::string& name, const LedgerIdentity& identity)
{
    if (isDifference(name))
        return identity.differences.at(static_cast<std::size_t>(std::stoi(name.substr(1))));
    const auto found =
        std::ranges::find(keyNames, name, &std::pair<std::string_view, std::string_view>::first);
    return found == keyNames.end() ? name : std::string(found->second);
}

void readFirstRows(ProvedIdentity& proved, const LedgerIdentity& identity, const Recordset& rows)
{
    for (std::size_t column = 0; column < rows.columnCount(); ++column)
        proved.columns.push_back(captionOf(rows.columnName(column), identity));
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        auto& texts = proved.firstRows.emplace_back();
        for (std::size_t column = 0; column < rows.columnCount(); ++column)
            texts.push_back(isDifference(rows.columnName(column)) ? amountText(rows.number(row, column))
                                                                  : rows.text(row, column));
    }
}

/// How many rows break it and by how much; what they are only if there are any.
void ask(Connection& connection, const LedgerIdentity& identity, ProvedIdentity& proved)
{
    std::string sum;
    for (std::size_t at = 0; at < identity.differences.size(); ++at)
        sum += (at > 0 ? "+" : "") + std::string("abs(x.d") + std::to_string(at) + ")";
    const Recordset counted =
        connection.query("select count(*) as n,sum(" + sum + ") as f from (" + identity.statement + ") as x");
    proved.rows = counted.integer(0, "n");
    if (proved.rows == 0)
        return;
    proved.state = State::broken;
    proved.difference = counted.number(0, "f");
    const bool hasAccounts = identity.statement.find("b.fNumber") != std::string::npos;
    readFirstRows(proved, identity,
                  connection.query("select top 10 x.* from (" + identity.statement +
                                   ") as x order by x.fYear,x.fPeriod" + (hasAccounts ? ",x.fNumber" : "")));
}

/// What comes of asking, or why it could not be asked.
ProvedIdentity proved(ProvedIdentity identity, const std::function<void(ProvedIdentity&)>& prove)
{
    try {
        prove(identity);
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError& error) {
        identity.state = State::failed;
        identity.reason = failures::sentenceOf(error);
    }
    return identity;
}

/// A suite may keep its vouchers elsewhere, or not for this user to read.
bool canReadVouchers(Connection& connection)
{
    try {
        return !connection
                    .query("select top 1 v.fcarryover from tblVoucher as v join tblVoucherEntry as e on "
                           "e.fvoucherid=v.fvoucherid")
                    .isEmpty();
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError&) {
        return false;
    }
}

LedgerOutline outlineOf(Connection& connection)
{
    LedgerOutline outline;
    const Recordset periods = connection.query(
        "select fYear,fPeriod from tblAccountBal group by fYear,fPeriod order by fYear,fPeriod");
    for (std::size_t row = 0; row < periods.rowCount(); ++row)
        outline.periods.push_back({static_cast<int>(periods.integer(row, "fYear")),
                                   static_cast<int>(periods.integer(row, "fPeriod"))});
    outline.hasVouchers = canReadVouchers(connection);
    return outline;
}

void readClasses(Connection& connection, LedgerOutline& outline)
{
    const Recordset classes =
        connection.query("select fitemclassid,fItemname,fitemtable from tblItemClass order by fitemclassid");
    for (std::size_t row = 0; row < classes.rowCount(); ++row)
        if (const auto table = plainTable(classes.text(row, "fitemtable")))
            outline.classes.push_back(
                {classes.text(row, "fitemclassid"), classes.text(row, "fItemname"), *table});
}

/// Without any every identity holds, which says nothing.
bool hasBalances(const LedgerOutline& ledger, int year)
{
    return std::ranges::any_of(ledger.periods,
                               [year](const LedgerPeriod& one) { return year == 0 || one.year == year; });
}

} // namespace

std::int64_t LedgerProof::faults() const
{
    return std::ranges::count_if(identities, [](const ProvedIdentity& one) {
        return one.state == State::broken || one.state == State::failed;
    });
}

LedgerProof proveLedger(Connection& connection, int year, const std::function<void(std::string_view)>& tell)
{
    const auto begun = std::chrono::steady_clock::now();
    LedgerProof proof;
    const ReadingOfOneMoment reading(connection);
    proof.isOfOneMoment = reading.isOne();
    LedgerOutline outline = outlineOf(connection);
    const auto add = [&](ProvedIdentity one) { proof.identities.push_back(std::move(one)); };
    const auto told = [&](std::string_view name) {
        if (tell)
            tell(name);
    };
    if (!hasBalances(outline, year))
        add({.name = "账上有余额",
             .state = State::failed,
             .reason = year == 0 ? "账上没有余额，其余各项没有可查的数"
                                 : "账上没有" + std::to_string(year) + "年的余额，其余各项没有可查的数"});
    // Those who may not read the classes have the rest proved.
    if (ProvedIdentity classes =
            proved({.name = "核算项目类别"}, [&](ProvedIdentity&) { readClasses(connection, outline); });
        classes.state == State::failed)
        add(std::move(classes));
    for (const LedgerIdentity& identity : ledgerIdentities(outline, year)) {
        told(identity.name);
        add(proved({.name = identity.name, .statement = identity.statement},
                   [&](ProvedIdentity& one) { ask(connection, identity, one); }));
    }
    if (!outline.hasVouchers)
        add({.name = "凭证 = 发生额", .state = State::skipped, .reason = "账套中没有可以成批读取的凭证"});
    for (const ReadingIdentity& identity : readingIdentities()) {
        told(identity.name);
        add(proved({.name = identity.name},
                   [&](ProvedIdentity& one) { proveReading(connection, identity, outline, year, one); }));
    }
    proof.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    return proof;
}

std::string_view stateText(State state)
{
    switch (state) {
    case State::holds:
        return "通过";
    case State::broken:
        return "不符";
    case State::skipped:
        return "未查";
    case State::failed:
        return "未查成";
    }
    return {};
}

} // namespace selfreport
