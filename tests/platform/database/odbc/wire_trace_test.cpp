#include "platform/database/Connection.h"

#include "tests/platform/database/database_folder.h"
#include "tests/tdsserver/TdsServer.h"

#include <gmock/gmock.h>

namespace selfreport {
namespace {

using testing::DatabaseFolder;

/// "name type=value" of a parameter as it travelled.
std::string shown(const tds::Parameter& parameter)
{
    struct Text {
        std::string operator()(std::monostate) const { return "null"; }
        std::string operator()(std::int64_t integer) const { return std::to_string(integer); }
        std::string operator()(double number) const { return numberText(number); }
        std::string operator()(const std::string& text) const { return "'" + text + "'"; }
        std::string operator()(const tds::Blob& blob) const
        {
            return std::to_string(blob.bytes.size()) + " bytes";
        }
    };
    return parameter.name + " " + tds::typeName(parameter.type) + "=" + std::visit(Text(), parameter.value);
}

std::vector<std::string> shownParameters(const tds::Request& request)
{
    std::vector<std::string> texts;
    for (const tds::Parameter& parameter : request.parameters)
        texts.push_back(shown(parameter));
    return texts;
}

TEST(WireTrace, StatementsTravelAsTheyStandAndValuesBesideThem)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    const auto connection = openConnection(server.connectionString());
    const std::string oddlySpaced = "select  *  from tblAccount  where fName='甲''乙’ ＇𠀀'  ";
    connection->query(oddlySpaced);
    const std::vector<std::byte> content(10000);
    const std::string longText(5000, 'x');
    connection->execute("insert into tblCWSelfReport(noid,fname,fdate,fTop,fHeader,fFooter,fFileContent) "
                        "values(?,?,?,?,?,?,?)",
                        {std::int64_t{7}, " O'Brien’s 报表 𠀀", SqlDateTime{2009, 12, 31, 8, 5, 9}, 0.6,
                         std::monostate(), longText, std::span<const std::byte>(content)});
    const auto requests = server.journal.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].step, tds::Step::batch);
    EXPECT_EQ(requests[0].text, oddlySpaced);
    EXPECT_EQ(requests[1].step, tds::Step::statement);
    EXPECT_EQ(requests[1].text,
              "insert into tblCWSelfReport(noid,fname,fdate,fTop,fHeader,fFooter,fFileContent) "
              "values(@P1,@P2,@P3,@P4,@P5,@P6,@P7)");
    const auto values = shownParameters(requests[1]);
    EXPECT_THAT(std::vector(values.begin() + 2, values.end()), // behind the text and its declarations
                ::testing::ElementsAre(" bigint=7", " nvarchar(16)=' O'Brien’s 报表 𠀀'",
                                       " datetime2(7)='2009-12-31 08:05:09'", " float=0.6",
                                       " nvarchar(1)=null", " nvarchar(max)='" + longText + "'",
                                       " varbinary(max)=10000 bytes"));
}

TEST(WireTrace, AProcedureGetsItsParametersInOrder)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append("strSql", 2000, " from 科目  where ")
        .append("strField", 100, "2")
        .append("currenct", 50, "")
        .append("fYear", 10, "2025")
        .append("fPeriod1", 10, "")
        .append("fPeriod2", 10, "12");
    openConnection(server.connectionString())->call(call);
    const auto requests = server.journal.requests();
    ASSERT_EQ(requests.size(), 2U) << "whether the columns can hold the text is asked before";
    EXPECT_EQ(requests[1].step, tds::Step::procedure);
    EXPECT_EQ(requests[1].text, "sp_GS_AcctProc");
    EXPECT_THAT(shownParameters(requests[1]),
                ::testing::ElementsAre(" nvarchar(16)=' from 科目  where '", " nvarchar(1)='2'",
                                       " nvarchar(1)=''", " nvarchar(4)='2025'", " nvarchar(1)=''",
                                       " nvarchar(2)='12'"));
}

TEST(WireTrace, ALoginSaysWhatTheConnectionStringSays)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    openConnection(
        server.connectionString("Application Name=自定义报表;ApplicationIntent=ReadOnly;Packet Size=8192"));
    openConnection(server.connectionString());
    const auto logins = server.journal.logins();
    ASSERT_EQ(logins.size(), 2U);
    EXPECT_EQ(logins[0].user, tds::TdsServer::user);
    EXPECT_EQ(logins[0].password, tds::TdsServer::password);
    EXPECT_EQ(logins[0].database, "cw");
    EXPECT_EQ(logins[0].application, "自定义报表");
    EXPECT_EQ(logins[1].application, "selfreport");
    EXPECT_EQ(logins[0].packetSize, 8192U);
    EXPECT_TRUE(logins[0].readOnly);
    EXPECT_FALSE(logins[1].readOnly);
    for (const tds::Login& login : logins)
        EXPECT_TRUE(login.isOdbc) << "a server cuts contents of stored reports for other clients";
}

} // namespace
} // namespace selfreport
