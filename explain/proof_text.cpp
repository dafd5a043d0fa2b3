#include "explain/proof_text.h"

#include "explain/drill_text.h"
#include "platform/database/session/Recordset.h"
#include "text/amount_text.h"
#include "text/json_text.h"

#include <algorithm>

namespace selfreport {

namespace {

using State = ProvedIdentity::State;

std::string joined(const std::vector<std::string>& texts, std::string_view between)
{
    std::string all;
    for (std::size_t at = 0; at < texts.size(); ++at)
        all += (at > 0 ? std::string(between) : "") + texts[at];
    return all;
}

std::string jsonList(const std::vector<std::string>& texts)
{
    std::vector<std::string> quoted;
    for (const std::string& text : texts)
        quoted.push_back(jsonText(text));
    return "[" + joined(quoted, ",") + "]";
}

std::string_view stateWord(State state)
{
    switch (state) {
    case State::holds:
        return "holds";
    case State::broken:
        return "broken";
    case State::skipped:
        return "skipped";
    case State::failed:
        return "failed";
    }
    return {};
}

std::string identityText(const ProvedIdentity& one)
{
    std::string text = std::string(stateText(one.state)) + "\t" + one.name;
    if (one.state == State::broken)
        text += "\t" + std::to_string(one.rows) + " 行，差额合计 " + amountText(one.difference);
    return text + "\n" + (one.state == State::holds ? "" : identityDetails(one));
}

std::string identityJson(const ProvedIdentity& one)
{
    std::vector<std::string> rows;
    for (const auto& row : one.firstRows)
        rows.push_back(jsonList(row));
    return "{\"name\":" + jsonText(one.name) + ",\"state\":" + jsonText(stateWord(one.state)) +
           ",\"rows\":" + std::to_string(one.rows) + ",\"difference\":" + amountText(one.difference) +
           ",\"columns\":" + jsonList(one.columns) + ",\"firstRows\":[" + joined(rows, ",") +
           "],\"statement\":" + jsonText(one.statement) + ",\"reason\":" + jsonText(one.reason) + "}";
}

std::int64_t count(const LedgerProof& proof, State state)
{
    return std::ranges::count(proof.identities, state, &ProvedIdentity::state);
}

} // namespace

std::string identityDetails(const ProvedIdentity& one)
{
    std::string text = one.reason.empty() ? "" : one.reason + "\n";
    if (one.state == State::broken) {
        text += joined(one.columns, "\t") + "\n";
        for (const auto& row : one.firstRows) {
            std::vector<std::string> cells; // names of accounts may have breaks and tabs in them
            std::ranges::transform(row, std::back_inserter(cells), oneLine);
            text += joined(cells, "\t") + "\n";
        }
        if (one.rows > static_cast<std::int64_t>(one.firstRows.size()))
            text += "……共 " + std::to_string(one.rows) + " 行\n";
    }
    return text + (one.statement.empty() ? "" : "查询: " + one.statement + "\n");
}

std::string proofSummary(const LedgerProof& proof)
{
    std::string text = std::to_string(proof.identities.size()) + " 项中 " +
                       std::to_string(count(proof, State::holds)) + " 项通过";
    for (const State state : {State::broken, State::failed, State::skipped})
        if (const std::int64_t many = count(proof, state); many > 0)
            text += "，" + std::to_string(many) + " 项" + std::string(stateText(state));
    return text + (proof.isOfOneMoment ? "" : "（无一致性快照：查的时候有人记账会误报）");
}

std::string proofText(const LedgerProof& proof)
{
    std::string text;
    for (const ProvedIdentity& one : proof.identities)
        text += identityText(one);
    return text + proofSummary(proof) + "，用时 " + amountText(proof.seconds) + " 秒\n";
}

std::string proofJson(const LedgerProof& proof)
{
    std::vector<std::string> identities;
    for (const ProvedIdentity& one : proof.identities)
        identities.push_back(identityJson(one));
    return "{\"faults\":" + std::to_string(proof.faults()) +
           ",\"oneMoment\":" + (proof.isOfOneMoment ? "true" : "false") +
           ",\"seconds\":" + amountText(proof.seconds) + ",\"identities\":[" + joined(identities, ",\n") +
           "]}\n";
}

} // namespace selfreport
