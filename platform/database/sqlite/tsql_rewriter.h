#pragma once
#include <string>
#include <string_view>

namespace selfreport {

/// Puts the server's T-SQL that the module uses into the embedded database's SQL:
/// - isnull(a,b) becomes ifnull(a,b); N'...' loses its N; "dbo." goes; "select top n" becomes "limit n" at
/// the end
///   of its select;
/// - "+" becomes "||" in a sum with a text literal;
/// - a column "like" a literal that begins with plain characters also gets the range that these span, which
/// an
///   index can serve.
/// Everything else, layout included, stays as it is.
std::string toEmbeddedSql(std::string_view tsql);

} // namespace selfreport
