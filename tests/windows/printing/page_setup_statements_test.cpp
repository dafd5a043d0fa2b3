#include "windows/printing/page_setup_statements.h"

#include "tests/CommaLocale.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(PageSetupStatements, NumbersAreShortWithAPoint)
{
    const CommaLocale locale(CommaLocale::Reach::process);
    EXPECT_EQ(
        savePageSetupStatement(12, {0.75, 0.75, 1.0, 0.5}, false),
        "update tblCWSelfReport set fTop=1,fBottom=0.5,fLeft=0.75,fRight=0.75,fDirection=0  where noid=12");
    EXPECT_EQ(
        savePageSetupStatement(3, {0.6, 0, 9.99, 0.05}, true),
        "update tblCWSelfReport set fTop=9.99,fBottom=0.05,fLeft=0.6,fRight=0,fDirection=1  where noid=3");
}

} // namespace
} // namespace selfreport
