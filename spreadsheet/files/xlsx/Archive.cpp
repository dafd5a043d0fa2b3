#include "spreadsheet/files/xlsx/Archive.h"

#include "spreadsheet/files/placing/ContentError.h"

#include <algorithm>
#include <cstdio>
#include <minizip/unzip.h>

namespace spreadsheet {

namespace {

constexpr std::size_t mostExpanded = std::size_t(512) << 20;
constexpr std::size_t usualExpanded = std::size_t(16) << 20;
constexpr std::size_t mostRatio = 150; ///< sheets of equal rows reach 50

} // namespace

/// The file as the library reads it.
struct Archive::Source {
    Bytes file;
    std::size_t at = 0;

    static void* open(void* opaque, const void*, int) { return opaque; }
    static uLong read(void* opaque, void*, void* buffer, uLong size)
    {
        auto& source = *static_cast<Source*>(opaque);
        const std::size_t part = std::min<std::size_t>(size, source.file.size() - source.at);
        std::memcpy(buffer, source.file.data() + source.at, part);
        source.at += part;
        return static_cast<uLong>(part);
    }
    static uLong write(void*, void*, const void*, uLong) { return 0; }
    static ZPOS64_T tell(void* opaque, void*) { return static_cast<Source*>(opaque)->at; }
    static long seek(void* opaque, void*, ZPOS64_T offset, int origin)
    {
        auto& source = *static_cast<Source*>(opaque);
        const std::size_t from = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? source.at : source.file.size();
        if (offset > source.file.size() - from)
            return -1;
        source.at = from + static_cast<std::size_t>(offset);
        return 0;
    }
    static int close(void*, void*) { return 0; }
    static int error(void*, void*) { return 0; }
};

Archive::Archive(Bytes file)
    : m_source(std::make_unique<Source>(Source{file}))
    , m_room(std::min(mostExpanded, usualExpanded + file.size() * mostRatio))
{
    zlib_filefunc64_def functions{Source::open, Source::read,  Source::write, Source::tell,
                                  Source::seek, Source::close, Source::error, m_source.get()};
    m_archive = unzOpen2_64("", &functions);
    requireFile(m_archive != nullptr, "压缩包已损坏或被截断");
}

Archive::~Archive()
{
    unzClose(m_archive);
}

std::optional<std::vector<char>> Archive::part(std::string_view path)
{
    constexpr int ignoringCase = 2;
    if (unzLocateFile(m_archive, std::string(path).c_str(), ignoringCase) != UNZ_OK)
        return std::nullopt;
    requireFile(unzOpenCurrentFile(m_archive) == UNZ_OK, "压缩包的内容已损坏或加了密");
    std::vector<char> content;
    constexpr std::size_t step = 1 << 18;
    for (;;) {
        const std::size_t before = content.size();
        content.resize(before + step);
        const int count = unzReadCurrentFile(m_archive, content.data() + before, step);
        content.resize(before + static_cast<std::size_t>(std::max(count, 0)));
        if (count < 0 || content.size() > m_room) {
            unzCloseCurrentFile(m_archive);
            refuseFile(count < 0 ? "压缩包的内容已损坏" : "压缩包展开后大得不合常理");
        }
        if (count == 0)
            break;
    }
    m_room -= content.size();
    requireFile(unzCloseCurrentFile(m_archive) == UNZ_OK, "压缩包的校验和不对");
    return content;
}

} // namespace spreadsheet
