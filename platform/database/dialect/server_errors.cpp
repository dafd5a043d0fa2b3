#include "platform/database/dialect/server_errors.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

enum class Kind { login, database, encryption, repeatable, ended, timeOut, other };

constexpr const char* databaseText = "数据库不存在或不允许使用，请检查数据库的名称，或请管理员授权";
constexpr const char* loginText = "用户名或密码不被接受，请检查后再试";
constexpr const char* expiredText = "密码已过期，请在数据库中更改密码后再试";
constexpr const char* encryptionText =
    "无法建立加密连接，请管理员检查服务器的证书，或改连接字符串中的 Encrypt";
constexpr const char* takenText = "数据重复，编号或名称已被占用，请换一个或再试一次";
constexpr const char* metText = "与其他用户的操作互相等待，请再试一次";
constexpr const char* endedText = "会话已被数据库管理员结束，请再试一次";
constexpr const char* stoppingText = "数据库服务器正在停止，请稍后再试";
constexpr const char* timeOutText = "等待数据库应答超时，请稍后再试";
constexpr const char* tableText = "找不到表或视图，请管理员检查数据库是否完整";
constexpr const char* rightText = "没有权限，请数据库管理员授权";
constexpr const char* lengthText = "内容超过了数据库字段的长度，请缩短后再试";
constexpr const char* numberText = "数值超出了数据库字段的范围，请检查后再试";
constexpr const char* spaceText = "数据库的空间已满，请管理员清理或扩充";
constexpr const char* memoryText = "数据库服务器的内存不足，请稍后再试";
constexpr const char* damageText = "数据库的文件读不出或已损坏，请立即通知管理员";

struct Meaning {
    std::int32_t number;
    Kind kind;
    const char* text;
};

/// What tells more stands first.
constexpr std::array meanings{
    Meaning{4060, Kind::database, databaseText},
    Meaning{4063, Kind::database, databaseText},
    Meaning{4064, Kind::database, databaseText},
    Meaning{911, Kind::database, databaseText},
    Meaning{18486, Kind::login, "用户已被锁定，请数据库管理员解锁"},
    Meaning{18470, Kind::login, "用户已被停用，请数据库管理员启用"},
    Meaning{18487, Kind::login, expiredText},
    Meaning{18488, Kind::login, expiredText},
    Meaning{18450, Kind::login, loginText},
    Meaning{18452, Kind::login, loginText},
    Meaning{18456, Kind::login, loginText},
    // Of the library below some drivers: an issuer that is not known, another name, a time that is over, no
    // common method, a refused greeting.
    Meaning{encryptionRefused, Kind::encryption, encryptionText},
    Meaning{-2146893022, Kind::encryption, encryptionText},
    Meaning{-2146893016, Kind::encryption, encryptionText},
    Meaning{-2146893007, Kind::encryption, encryptionText},
    Meaning{-2146893018, Kind::encryption, encryptionText},
    Meaning{2627, Kind::repeatable, takenText},
    Meaning{2601, Kind::repeatable, takenText},
    Meaning{1205, Kind::repeatable, metText},
    Meaning{3960, Kind::repeatable, "数据已被其他用户更改，请再试一次"},
    Meaning{1222, Kind::other, "数据正被其他用户占用，请稍后再试"},
    Meaning{596, Kind::ended, endedText},
    Meaning{6005, Kind::ended, stoppingText},
    Meaning{17142, Kind::ended, "数据库服务器已暂停，请稍后再试"},
    Meaning{-2, Kind::timeOut, timeOutText},
    Meaning{208, Kind::other, tableText},
    Meaning{207, Kind::other, "找不到列，请管理员检查数据库是否完整"},
    Meaning{2812, Kind::other, "找不到存储过程，请管理员安装"},
    Meaning{229, Kind::other, rightText},
    Meaning{230, Kind::other, rightText},
    Meaning{262, Kind::other, rightText},
    Meaning{297, Kind::other, rightText},
    Meaning{300, Kind::other, rightText},
    Meaning{916, Kind::other, rightText},
    Meaning{8152, Kind::other, lengthText},
    Meaning{2628, Kind::other, lengthText},
    Meaning{8115, Kind::other, numberText},
    Meaning{220, Kind::other, numberText},
    Meaning{8114, Kind::other, "数据的类型不符，请检查后再试"},
    Meaning{245, Kind::other, "数据的类型不符，请检查后再试"},
    Meaning{547, Kind::other, "与其他数据的关系不允许这样改，请检查后再试"},
    Meaning{515, Kind::other, "缺少必须有的数据，请检查后再试"},
    Meaning{3906, Kind::other, "数据库是只读的，请管理员开放写入"},
    Meaning{1105, Kind::other, spaceText},
    Meaning{9002, Kind::other, spaceText},
    Meaning{701, Kind::other, memoryText},
    Meaning{8645, Kind::other, memoryText},
    Meaning{823, Kind::other, damageText},
    Meaning{824, Kind::other, damageText},
};

constexpr std::int32_t toldInWords = 33557097;

struct Words {
    std::string_view begin, end; ///< with a name between
    std::int32_t number;
};
constexpr std::array words{
    Words{"relation \"", "\" does not exist", 208}, Words{"column \"", "\" does not exist", 207},
    Words{"procedure ", ") does not exist", 2812}, // or none with these parameters
};

const Meaning* meaningOf(std::span<const std::int32_t> numbers)
{
    const auto found = std::ranges::find_first_of(meanings, numbers, {}, &Meaning::number);
    return found == meanings.end() ? nullptr : &*found;
}

/// That of the number which tells most.
bool isOf(std::span<const std::int32_t> numbers, Kind kind)
{
    const Meaning* const meaning = meaningOf(numbers);
    return meaning && meaning->kind == kind;
}

} // namespace

std::int32_t commonNumber(std::int32_t number, std::string_view text)
{
    if (number != toldInWords)
        return number;
    const auto found = std::ranges::find_if(words, [&](const Words& known) {
        return text.find(known.begin) != std::string_view::npos && text.ends_with(known.end);
    });
    return found == words.end() ? number : found->number;
}

std::string_view serverErrorText(std::span<const std::int32_t> numbers)
{
    const Meaning* const meaning = meaningOf(numbers);
    return meaning ? meaning->text : "";
}

bool refusesLogin(std::span<const std::int32_t> numbers)
{
    return isOf(numbers, Kind::login);
}

bool refusesEncryption(std::span<const std::int32_t> numbers)
{
    return isOf(numbers, Kind::encryption);
}

bool mayBeRepeated(std::span<const std::int32_t> numbers)
{
    return isOf(numbers, Kind::repeatable);
}

bool endsSession(std::span<const std::int32_t> numbers)
{
    return isOf(numbers, Kind::ended);
}

bool saysTimeOut(std::span<const std::int32_t> numbers)
{
    return isOf(numbers, Kind::timeOut);
}

} // namespace selfreport
