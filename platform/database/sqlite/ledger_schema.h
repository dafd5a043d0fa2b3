#pragma once
#include <string>

namespace selfreport {

/// SQL of the embedded database that creates every table of the suite that the module reads or writes, with
/// its indexes, and fills the fetch type keys. All texts compare under collation "chinese". The server's
/// scripts under sql/sqlserver/ hold the same tables.
std::string ledgerSchemaScript();

} // namespace selfreport
