#include "failures/failure_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

namespace failures {

namespace {

struct Reason {
    int error;
    const char* text;
};

constexpr std::array reasons{
    Reason{ENOENT, "文件或文件夹不存在"},
    Reason{ENOTDIR, "路径中有一级不是文件夹"},
    Reason{EACCES, "没有权限"},
    Reason{EPERM, "没有权限"},
    Reason{EROFS, "所在的磁盘是只读的"},
    Reason{EISDIR, "同名的文件夹已存在"},
    Reason{EEXIST, "文件已存在"},
    Reason{ENOTEMPTY, "文件夹不是空的"},
    Reason{ENOSPC, "磁盘已满"},
    Reason{EDQUOT, "磁盘配额已用完"},
    Reason{EFBIG, "文件超过允许的大小"},
    Reason{ENAMETOOLONG, "文件名或路径过长"},
    Reason{ELOOP, "符号链接绕成了圈"},
    Reason{EBUSY, "正被其他程序占用"},
    Reason{ETXTBSY, "正被其他程序占用"},
    Reason{EAGAIN, "对方没有应答"},
    Reason{ETIMEDOUT, "等待超时"},
    Reason{EIO, "磁盘读写出错"},
    Reason{EXDEV, "不在同一个磁盘上"},
    Reason{EMLINK, "文件的硬链接过多"},
    Reason{EMFILE, "打开的文件过多"},
    Reason{ENFILE, "打开的文件过多"},
    Reason{ENOMEM, "内存不足"},
    Reason{ENODEV, "设备不存在"},
    Reason{ENXIO, "设备不存在或没有程序在接收"},
    Reason{EPIPE, "接收的程序已经退出"},
    Reason{ECONNREFUSED, "没有程序在接收"},
    Reason{EINVAL, "系统不支持这样的操作"},
    Reason{EOPNOTSUPP, "系统不支持这样的操作"},
    Reason{ENOSYS, "系统不支持这样的操作"},
    Reason{EINTR, "操作被打断"},
};

std::string ofFile(const std::filesystem::filesystem_error& error)
{
    const std::string file = error.path1().string();
    return (file.empty() ? std::string("文件操作失败") : "文件“" + file + "”操作失败") + "：" +
           reasonOfErrno(error.code().value()) + "。";
}

std::string ofSystem(const std::error_code& code)
{
    const bool isErrno =
        code.category() == std::generic_category() || code.category() == std::system_category();
    return "系统操作失败：" + (isErrno ? reasonOfErrno(code.value()) : std::string("读写出错")) + "。";
}

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

std::string reasonOfErrno(int error)
{
    const auto found = std::ranges::find(reasons, error, &Reason::error);
    if (found != reasons.end())
        return found->text;
    return error == 0 ? std::string("系统没有说明原因") : "系统错误 " + std::to_string(error);
}

std::string sentenceOf(const std::exception& error)
{
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return "内存不足，操作没有完成。";
    if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return ofFile(*file);
    if (const auto* system = dynamic_cast<const std::system_error*>(&error))
        return ofSystem(system->code());
    const std::string text = error.what();
    if (!text.empty() && !isAscii(text))
        return text; // ours are Chinese, those of libraries never
    return "程序内部错误，操作没有完成" + (text.empty() ? "。" : "（" + text + "）。");
}

} // namespace failures
