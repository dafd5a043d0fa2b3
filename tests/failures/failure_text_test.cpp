#include "failures/failure_text.h"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <system_error>
#include <tuple>
#include <vector>

namespace failures {
namespace {

using testing::HasSubstr;
using testing::Not;

struct OwnError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

TEST(FailureText, WhateverIsThrownBecomesAChineseSentence)
{
    const struct {
        std::function<void()> work;
        std::string expected;
    } cases[] = {
        {[] { throw OwnError("没有编号为3的报表"); }, "没有编号为3的报表"},
        {[] { throw std::bad_alloc(); }, "内存不足，操作没有完成。"},
        {[] { std::vector<int>().reserve(std::vector<int>().max_size() + 1); }, "程序内部错误"},
        {[] { std::ignore = std::filesystem::file_size("/没有/的.ss7"); },
         "文件“/没有/的.ss7”操作失败：文件或文件夹不存在。"},
        {[] { throw std::system_error(ENOSPC, std::generic_category()); }, "系统操作失败：磁盘已满。"},
        {[] { throw std::system_error(0, std::generic_category()); }, "系统操作失败：系统没有说明原因。"},
        {[] { throw std::runtime_error(""); }, "程序内部错误，操作没有完成。"},
        {[] { throw std::logic_error("basic_string::append"); },
         "程序内部错误，操作没有完成（basic_string::append）。"},
    };
    for (const auto& [work, expected] : cases) {
        try {
            work();
            ADD_FAILURE() << expected;
        } catch (const std::exception& error) {
            EXPECT_THAT(sentenceOf(error), testing::StartsWith(expected));
        }
    }
}

/// No number of the system comes with a text of its own, least of all "Success".
TEST(FailureText, EveryErrorNumberHasAReason)
{
    for (int error = 0; error < 140; ++error) {
        const std::string reason = reasonOfErrno(error);
        ASSERT_FALSE(reason.empty()) << error;
        EXPECT_FALSE(isAscii(reason[0])) << reason;
        EXPECT_THAT(reason, Not(HasSubstr(std::generic_category().message(error)))) << error;
    }
}

} // namespace
} // namespace failures
