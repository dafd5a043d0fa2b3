#include "explain/period_succession.h"

#include <algorithm>

namespace selfreport {

namespace {

int orderOf(const LedgerPeriod& period)
{
    return period.year * 100 + period.period;
}

std::string orderIn(const std::string& alias)
{
    return alias + ".fYear*100+" + alias + ".fPeriod";
}

} // namespace

bool isAdjustment(const LedgerPeriod& period)
{
    return period.period == 13;
}

Successions successionsOf(const std::vector<LedgerPeriod>& periods, int year)
{
    Successions all;
    for (std::size_t at = 1; at < periods.size(); ++at)
        if (const Succession one{periods[at - 1], periods[at]};
            year == 0 || one.from.year == year || one.to.year == year)
            all.push_back(one);
    return all;
}

std::string sameLine(const std::string& left, const std::string& right)
{
    std::string text;
    for (const char* name : {".faccountid", ".fDetailId", ".fCurrencyid"})
        text += (text.empty() ? "" : " and ") + left + name + "=" + right + name;
    return text;
}

std::string between(const std::string& alias, const LedgerPeriod& first, const LedgerPeriod& last)
{
    return orderIn(alias) + ">=" + std::to_string(orderOf(first)) + " and " + orderIn(alias) +
           "<=" + std::to_string(orderOf(last));
}

std::string besideIt(const std::string& table, const std::string& alias, const std::string& of,
                     const Successions& successions, bool next)
{
    // Only where the neighbour is not the one beside it in the same year it is listed: at the ends of years.
    std::string years, periods;
    for (const Succession& one : successions) {
        const LedgerPeriod &here = next ? one.from : one.to, &there = next ? one.to : one.from;
        if (there.year == here.year && there.period == here.period + (next ? 1 : -1))
            continue;
        const std::string when = " when " + std::to_string(orderOf(here)) + " then ";
        years += when + std::to_string(there.year);
        periods += when + std::to_string(there.period);
    }
    const auto chosen = [&](const std::string& listed, const std::string& otherwise) {
        return listed.empty() ? otherwise : "case " + orderIn(of) + listed + " else " + otherwise + " end";
    };
    return " join " + table + " as " + alias + " on " + sameLine(alias, of) + " and " + alias +
           ".fYear=" + chosen(years, of + ".fYear") + " and " + alias +
           ".fPeriod=" + chosen(periods, of + ".fPeriod" + (next ? "+1" : "-1"));
}

std::string unlessAdjusted(const std::string& table, const std::string& of,
                           const std::vector<LedgerPeriod>& periods, const Successions& successions,
                           bool next)
{
    std::string keys, years;
    for (const Succession& one : successions) {
        const auto adjustment = std::ranges::find_if(periods, [&](const LedgerPeriod& period) {
            return isAdjustment(period) && one.from < period && period < one.to;
        });
        if (adjustment == periods.end())
            continue;
        const std::string key = std::to_string(orderOf(next ? one.from : one.to));
        keys += (keys.empty() ? "" : ",") + key;
        years += " when " + key + " then " + std::to_string(adjustment->year);
    }
    if (keys.empty())
        return {};
    return " and (" + orderIn(of) + " not in (" + keys + ") or not exists(select 1 from " + table +
           " as o where " + sameLine("o", of) + " and o.fYear=case " + orderIn(of) + years +
           " end and o.fPeriod=13))";
}

} // namespace selfreport
