#include "platform/database/dialect/parameter_sizes.h"

#include "platform/database/session/ProcedureCall.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(ParameterSizes, CountInTheServersCodePage)
{
    struct Case {
        const char* what;
        std::string value;
        bool fits;
        int codePage = 0; ///< not known
    };
    const Case cases[] = {
        {"ASCII", "0123456789", true},
        {"one too many", "01234567890", false},
        {"two bytes for a Chinese character", "一二三四五", true},
        {"and a letter", "一二三四五a", false},
        {"four bytes for a rare character", "𠀀𠀀ab", true},
        {"rare and one more", "𠀀𠀀abc", false},
        {"broken text", std::string(10, '\xFF'), true},
        {"broken text too long", std::string(11, '\xFF'), false},
        {"a character that the server has", "镕€é", true, 936},
        {"one that it would replace", "a㐂", false, 936},
        {"a server without Chinese", "一", false, 1252},
        {"a server with everything", "㐂😀", true, 65001},
        {"a page that nobody knows", "㐂", true, 77},
    };
    for (const Case& c : cases) {
        ProcedureCall call{"sp_p", {}};
        call.append("first", 5, "").append("fYear", 10, c.value);
        const auto error = unfitParameter(call, c.codePage);
        EXPECT_EQ(!error, c.fits) << c.what;
        if (error) {
            EXPECT_NE(error->description.find("fYear"), std::string::npos);
        }
    }
}

} // namespace
} // namespace selfreport
