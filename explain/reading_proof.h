#pragma once
#include "explain/ledger_identities.h"
#include "explain/ledger_proof.h"

#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// Something that holds of how reports read a ledger.
struct ReadingIdentity {
    enum class Of {
        fetchTypes,  ///< the 14 are there, and the procedure gives what the tables hold
        ranges,      ///< all accounts together = each by itself
        batches,     ///< many calls at once = each alone
        explanations ///< the parts of a figure = the figure
    };
    std::string name;
    Of of;
};

std::vector<ReadingIdentity> readingIdentities();

/// Tries it with calls that are drawn from the ledger, the same ones each time.
/// @param year  of the calls; 0: the latest. @throws DatabaseError
void proveReading(Connection& connection, const ReadingIdentity& identity, const LedgerOutline& ledger,
                  int year, ProvedIdentity& proved);

} // namespace selfreport
