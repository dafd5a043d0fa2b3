#include "platform/database/dialect/server_errors.h"
#include "platform/database/odbc/odbc_diagnostics.h"
#include "platform/database/odbc/odbc_text.h"
#include "platform/database/odbc/procedure_batch.h"

#include "platform/database/Connection.h"

#include <arpa/inet.h>
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace selfreport {
namespace {

/// A local port that nothing answers on: closed, or open with nobody who reads.
class DeafPort {
public:
    explicit DeafPort(bool listens)
        : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
        socklen_t length = sizeof address;
        ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length);
        number = ntohs(address.sin_port);
        if (listens)
            ::listen(m_socket, 4);
    }
    ~DeafPort() { ::close(m_socket); }
    DeafPort(const DeafPort&) = delete;
    DeafPort& operator=(const DeafPort&) = delete;

    int number = 0;

private:
    int m_socket;
};

TEST(OdbcSession, AnUnreachableServerFailsWithinItsTimeOut)
{
    for (const bool listens : {false, true}) {
        const DeafPort port(listens);
        const auto start = std::chrono::steady_clock::now();
        try {
            openConnection("Provider=SQLOLEDB.1;Data Source=127.0.0.1," + std::to_string(port.number) +
                           ";User ID=sa;Password=geheim;Initial Catalog=x;Connect Timeout=2");
            ADD_FAILURE() << "opened";
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, unspecifiedError) << error.description;
            EXPECT_FALSE(error.description.empty());
            EXPECT_EQ(error.description.find("geheim"), std::string::npos);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << listens;
    }
}

TEST(OdbcDiagnostics, TellLoginDatabaseAndLossApart)
{
    struct Case {
        const char* what;
        std::vector<OdbcRecord> records;
        std::int32_t opening;
        bool lost;
    };
    const Case cases[] = {
        {"wrong password", {{"42000", 18456, "Login failed"}, {"08001", 0, "Unable"}}, loginRejected, true},
        {"database missing",
         {{"42000", 18456, "Login failed"}, {"42000", 4060, "Cannot open database"}, {"08001", 0, "Unable"}},
         unspecifiedError,
         true},
        {"another driver's state", {{"28000", 0, "Invalid authorization"}}, loginRejected, false},
        {"refused port", {{"08S01", 20009, "Unable to connect"}}, unspecifiedError, true},
        {"lost under a warning's state", {{"01000", 20017, "Unexpected EOF"}}, unspecifiedError, true},
        {"syntax", {{"42000", 102, "Incorrect syntax"}}, unspecifiedError, false},
        {"silence", {}, unspecifiedError, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(openingError(c.records).number, c.opening) << c.what;
        EXPECT_EQ(saysLost(c.records), c.lost) << c.what;
        // A driver's text stands behind ours.
        const std::string said = openingError(c.records).description;
        EXPECT_GE(static_cast<unsigned char>(said[0]), 0x80) << said;
        const std::string first = c.records.empty() ? "断开" : c.records[0].text;
        EXPECT_GT(said.find(first), 0U) << said;
        EXPECT_NE(said.find(first), std::string::npos) << said;
    }
    EXPECT_EQ(workError(std::vector<OdbcRecord>{{"42000", 1205, "deadlocked"}}).description,
              "与其他用户的操作互相等待，请再试一次：deadlocked");
    EXPECT_EQ(workError(cases[5].records).number, 102);
}

/// A number of the server decides what is told, with what to do next, and what is done again.
TEST(OdbcDiagnostics, NumbersComeWithANextStep)
{
    enum class Thrown { plain, repeatable, lost };
    const struct {
        std::vector<OdbcRecord> records;
        const char* told;
        Thrown thrown;
    } cases[] = {
        {{{"22001", 8152, "x"}}, "长度", Thrown::plain},
        {{{"42000", 2628, "x"}}, "长度", Thrown::plain},
        {{{"23000", 2627, "x"}, {"01000", 3621, "terminated"}}, "重复", Thrown::repeatable},
        {{{"01000", 3621, "terminated"}, {"23000", 2601, "x"}}, "重复", Thrown::repeatable},
        {{{"42000", 229, "x"}}, "权限", Thrown::plain},
        {{{"40001", 1205, "x"}}, "互相等待", Thrown::repeatable},
        {{{"HY000", 1222, "x"}}, "占用", Thrown::plain},
        {{{"HY000", -2, "x"}}, "超时", Thrown::plain},
        {{{"HYT00", 0, "x"}}, "超时", Thrown::plain},
        {{{"42000", 208, "x"}}, "找不到表", Thrown::plain},
        {{{"42000", 33557097, "[x]relation \"tblcwselfreport\" does not exist"}}, "找不到表", Thrown::plain},
        {{{"42000", 33557097, "[x]procedure sp_gs_voucherproc(@page => unknown) does not exist"}},
         "找不到存储过程",
         Thrown::plain},
        {{{"42000", 33557097, "[x]column \"fname\" does not exist"}}, "找不到列", Thrown::plain},
        {{{"01000", 596, "x"}}, "管理员", Thrown::lost},
        {{{"01000", 20017, "x"}}, "断开", Thrown::lost},
    };
    for (const auto& c : cases) {
        Thrown thrown = Thrown::plain;
        std::string said;
        try {
            throwWorkError(c.records, false);
        } catch (const ConnectionLost& error) {
            thrown = Thrown::lost;
            said = error.description;
        } catch (const RepeatableError& error) {
            thrown = Thrown::repeatable;
            said = error.description;
        } catch (const DatabaseError& error) {
            said = error.description;
        }
        const std::string ours = said.substr(0, said.find("："));
        EXPECT_NE(ours.find(c.told), std::string::npos) << said;
        EXPECT_NE(ours.find("请"), std::string::npos) << said;
        EXPECT_TRUE(thrown == c.thrown) << said;
    }
    const auto opening = [](const std::vector<OdbcRecord>& records, bool encrypts) {
        return openingError(records, encrypts).number;
    };
    EXPECT_EQ(opening({{"08001", 0, "x"}, {"01000", 20002, "x"}}, true), encryptionRefused);
    EXPECT_EQ(opening({{"08001", 0, "x"}, {"01000", 20002, "x"}}, false), unspecifiedError);
    EXPECT_EQ(opening({{"08S01", 20009, "x"}, {"08001", 20002, "x"}}, true), unspecifiedError);
    EXPECT_EQ(opening({{"42000", 18456, "x"}, {"08001", 20002, "x"}}, true), loginRejected);
    EXPECT_EQ(opening({{"08001", -2146893019, "x"}}, false), encryptionRefused);
}

TEST(OdbcText, KeepsEveryCharacter)
{
    for (const std::string text : {"", "abc", "现金 ①", "𠀀😀", "a\xC3\xA9"})
        EXPECT_EQ(utf8Text(odbcText(text)), text);
    EXPECT_EQ(utf8Text(odbcText("a\xFFz")), "a\xEF\xBF\xBDz");
    const std::vector<SQLWCHAR> lone{0xD800, 'x'};
    EXPECT_EQ(utf8Text(lone), "\xEF\xBF\xBDx");
}

TEST(ProcedureBatch, IsOneTextWithQuotedValues)
{
    ProcedureCall call{"sp_p", {}};
    call.append("strSql", 20, "x='a'").append("fYear", 10, "");
    const std::vector<ProcedureCall> calls{call, {"sp_q", {}}};
    EXPECT_EQ(procedureBatch(calls),
              "declare @r int set @r=-1 exec @r=sp_p @strSql=N'x=''a''',@fYear=N'' select 0 as "
              "callOrdinal,@r as callReturn set @r=-1 exec @r=sp_q select 1 as callOrdinal,@r as callReturn");
}

TEST(ProcedureBatch, PairsRowSetsByTheirOrdinals)
{
    const auto amount = [](double f) {
        Recordset rows({"f"});
        rows.appendRow({f});
        return rows;
    };
    const auto answer = [](std::int64_t ordinal, Recordset::Cell returned) {
        Recordset rows({"callOrdinal", "callReturn"});
        rows.appendRow({ordinal, std::move(returned)});
        return rows;
    };
    BatchAnswers answers(6);
    answers.add(amount(1));
    answers.add(amount(99)); // a second row set of the same call
    answers.add(answer(0, std::int64_t{1}));
    answers.add(answer(1, std::int64_t{0})); // no rows
    answers.add(amount(7));
    answers.failCurrent(); // half-way, and yet it goes on to return
    answers.add(answer(2, std::int64_t{1}));
    answers.add(answer(3, std::int64_t{-1}));
    answers.add(amount(5));
    answers.add(answer(5, std::int64_t{1})); // nothing came for 4
    answers.add(answer(77, std::int64_t{1}));
    const auto results = std::move(answers).take();
    ASSERT_TRUE(results[0] && results[1] && results[5]);
    EXPECT_EQ(results[0]->rows->number(0, "f"), 1);
    EXPECT_EQ(results[1]->returnValue, 0);
    EXPECT_FALSE(results[1]->rows);
    EXPECT_EQ(results[5]->rows->number(0, "f"), 5);
    for (const std::size_t repeated : {2U, 3U, 4U})
        EXPECT_FALSE(results[repeated]) << repeated;
}

} // namespace
} // namespace selfreport
