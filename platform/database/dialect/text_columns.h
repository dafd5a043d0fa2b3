#pragma once
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

class Recordset;

/// What a text column or parameter of the server can hold.
struct TextColumn {
    std::size_t most = 0; ///< bytes in its code page, of a wide one UTF-16 units; 0: no limit
    bool isWide = false;  ///< nvarchar: takes every character
    int codePage = 0;     ///< of its collation; 0: unknown, every character counts as taken
};

/// What the columns that users' texts go into can hold, as the server's catalogue tells it.
struct TextColumns {
    std::map<std::string, TextColumn, std::less<>> columns; ///< by "tblcwselfreport.fname", small letters
    int codePage = 0; ///< of the database, which texts of procedures' parameters go through

    /// One without a limit for a column that is not known.
    TextColumn column(std::string_view table, std::string_view name) const;
};

/// Asks for the tables that the module writes texts into and for the database's collation, in one go.
std::string textColumnsStatement();
TextColumns textColumnsOf(const Recordset& rows);

/// Why a column cannot hold a text: a Chinese sentence that names the limit or the first character that would
/// be stored as "?". Nothing if it can.
/// @param what  the text's own name, "报表名称"
std::optional<std::string> misfit(std::string_view what, std::string_view text, const TextColumn& column);

/// The first character of a text that a code page cannot hold; "" if it holds all.
std::string characterMissingIn(int codePage, std::string_view text);

} // namespace selfreport
