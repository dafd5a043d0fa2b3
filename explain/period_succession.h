#pragma once
#include "explain/ledger_identities.h"

#include <string>
#include <vector>

namespace selfreport {

/// A period and the one that goes on from it.
struct Succession {
    LedgerPeriod from, to;
};

using Successions = std::vector<Succession>;

/// Whether a period holds adjustments of some accounts only: a thirteenth. Those accounts go on from it, the
/// others from the period before.
bool isAdjustment(const LedgerPeriod& period);

/// Neighbours among periods, ascending. @param year  those that touch it; 0: all
Successions successionsOf(const std::vector<LedgerPeriod>& periods, int year);

// The texts below are pieces of statements on tables of balances; an alias names a row of one.

/// "a.faccountid=b.faccountid and …": one account, combination and currency.
std::string sameLine(const std::string& left, const std::string& right);

/// "a.fYear*100+a.fPeriod>=202401 and …<=202412"
std::string between(const std::string& alias, const LedgerPeriod& first, const LedgerPeriod& last);

/// " join TABLE as n on …": the row of a line's next period, or of its previous one, found by the primary
/// key. @param of  the row that it is joined to, which must have a succession
std::string besideIt(const std::string& table, const std::string& alias, const std::string& of,
                     const Successions& successions, bool next);

/// " and (…)": the line of a row has no adjustment between it and its neighbour; "" if no line can have one.
/// @param successions  among usual periods
std::string unlessAdjusted(const std::string& table, const std::string& of,
                           const std::vector<LedgerPeriod>& periods, const Successions& successions,
                           bool next);

} // namespace selfreport
