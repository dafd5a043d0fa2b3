#include "platform/database/sqlite/tsql_rewriter.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(TsqlRewriter, RewritesWhatDiffersAndNothingElse)
{
    struct Case {
        const char* what;
        const char* tsql;
        const char* embedded;
    };
    const Case cases[] = {
        {"isnull", "select IsNull(max(noid),0) as n from t", "select ifnull(max(noid),0) as n from t"},
        {"the operator stays", "select a from t where b is null", "select a from t where b is null"},
        {"isnull in a text stays", "select 'isnull(a,b)'", "select 'isnull(a,b)'"},
        {"N before a text", "select N'中''文',n'x', N 'y'", "select '中''文','x', N 'y'"},
        {"a name that ends in n", "select an'x'", "select an'x'"},
        {"owner", "select * from dbo.t", "select * from t"},
        {"top", "select top 5 * from t order by a", "select  * from t order by a limit 5"},
        {"top in brackets", "select TOP (5) a from t", "select  a from t limit 5"},
        {"top of an inner select", "select * from (select distinct top 1 a from t) x where top1=2",
         "select * from (select distinct  a from t limit 1) x where top1=2"},
        {"top before a semicolon", "select top 1 a from t;", "select  a from t limit 1;"},
        {"sums of texts", "select a+'-'+b, 1+2 from t where c=d+1",
         "select a||'-'||b, 1+2 from t where c=d+1"},
        {"a text beside the sum", "select 1+a from t where b='x' and c=1+2",
         "select 1+a from t where b='x' and c=1+2"},
        {"sums in brackets", "insert into t values(1+2,'a'+b)", "insert into t values(1+2,'a'||b)"},
        {"like", "where t.a like '10_'",
         "where (t.a like '10_' and t.a>=like_first('10_') and t.a<=like_last('10_'))"},
        {"like with a parameter", "where a like ?2 or 1=1",
         "where (a like ?2 and a>=like_first(?2) and a<=like_last(?2)) or 1=1"},
        {"not like", "where a not like 'b%'", "where a not like 'b%'"},
        {"like of an expression", "where len(a) like '1%'", "where len(a) like '1%'"},
        {"like with escape", "where a like '1!%' escape '!'", "where a like '1!%' escape '!'"},
        {"comments", "select 1 -- isnull(a,b)\n/* N'x' */+2", "select 1 -- isnull(a,b)\n/* N'x' */+2"},
        {"brackets around names", "select [isnull(] from [N'x']", "select [isnull(] from [N'x']"},
        {"an open text", "select 'abc", "select 'abc"},
        {"an open comment", "select 1 /* x", "select 1 /* x"},
        {"open brackets", "select ((1", "select ((1"},
        {"nothing", "", ""},
        {"odd blanks", " select  1 from  t ", " select  1 from  t "},
    };
    for (const Case& c : cases)
        EXPECT_EQ(toEmbeddedSql(c.tsql), c.embedded) << c.what;
}

} // namespace
} // namespace selfreport
