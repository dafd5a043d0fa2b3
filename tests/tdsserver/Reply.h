#pragma once
#include "tests/tdsserver/values.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport::tds {

struct Column {
    std::string name;
    TypeInfo type;
};

struct ResultSet {
    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows;
};

/// What one request is answered with, token by token, so that a test can cut or disorder it.
class Reply {
public:
    enum class Done : std::uint8_t { statement = 0xFD, procedure = 0xFE, inProcedure = 0xFF };

    void loginAcknowledged();
    void environment(std::uint8_t kind, std::string_view now, std::string_view before);
    void collation();
    void transaction(std::uint8_t kind, std::string_view now, std::string_view before);
    void error(std::int32_t number, std::string_view text);
    void info(std::int32_t number, std::string_view text);
    void rows(const ResultSet& rows);
    void returnStatus(std::int32_t status);
    void returnInteger(std::int32_t value);

    /// Ends a statement; more follows until finish(). @param rows  -1: not counted
    void done(Done kind, std::int64_t rows = -1, bool failed = false);
    void attentionDone();
    /// Marks the last token as the reply's end.
    void finish();

    std::string body() const;

    std::vector<std::string> tokens;

private:
    void message(char token, std::int32_t number, std::uint8_t severity, std::string_view text);
    void columnDescriptions(std::span<const Column> columns);
    void row(std::span<const Column> columns, std::span<const Value> values);
};

} // namespace selfreport::tds
