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
    };
    for (const Case& c : cases) {
        ProcedureCall call{"sp_p", {}};
        call.append("first", 5, "").append("fYear", 10, c.value);
        const auto error = oversizedParameter(call);
        EXPECT_EQ(!error, c.fits) << c.what;
        if (error) {
            EXPECT_NE(error->description.find("fYear"), std::string::npos);
        }
    }
}

} // namespace
} // namespace selfreport
