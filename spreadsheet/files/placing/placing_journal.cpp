#include "spreadsheet/files/placing/placing_journal.h"

#include <cstdio>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace spreadsheet {

namespace {

constexpr std::string_view heading{"selfreport: files being put in place\0", 37};
constexpr std::string_view end{"end\0", 4}; ///< a journal that lacks it was not finished

/// The fields of a text, each ended by a zero byte.
std::vector<std::string> fieldsOf(std::string_view text)
{
    std::vector<std::string> fields;
    for (std::size_t zero; (zero = text.find('\0')) != std::string_view::npos; text.remove_prefix(zero + 1))
        fields.emplace_back(text.substr(0, zero));
    return fields;
}

} // namespace

std::string fileState(const std::filesystem::path& file)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0)
        return {};
    std::string state;
    for (const auto part :
         {static_cast<long long>(status.st_dev), static_cast<long long>(status.st_ino),
          static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
          static_cast<long long>(status.st_mtim.tv_nsec)})
        state += std::to_string(part) + ":";
    return state;
}

std::string journalText(std::span<const Placing> placings)
{
    std::string text(heading);
    for (const Placing& placing : placings)
        for (const std::string& field : {std::filesystem::absolute(placing.temporary).string(),
                                         std::filesystem::absolute(placing.final).string(), placing.former})
            text.append(field).push_back('\0');
    return text.append(end);
}

void finishPlacing(const std::string& journal)
{
    if (!journal.starts_with(heading) || !journal.ends_with(end))
        return;
    const std::vector<std::string> fields = fieldsOf(
        std::string_view(journal).substr(heading.size(), journal.size() - heading.size() - end.size()));
    for (std::size_t at = 0; at + 2 < fields.size(); at += 3)
        if (!fileState(fields[at]).empty() && fileState(fields[at + 1]) == fields[at + 2])
            std::rename(fields[at].c_str(), fields[at + 1].c_str());
}

} // namespace spreadsheet
