#include "spreadsheet/files/xlsx/Archive.h"

#include "spreadsheet/files/placing/ContentError.h"

#include <algorithm>
#include <cstdio>
#include <libdeflate.h>
#include <minizip/unzip.h>
#include <new>

namespace spreadsheet {

namespace {

constexpr std::size_t mostExpanded = std::size_t(512) << 20;
constexpr std::size_t usualExpanded = std::size_t(16) << 20;
constexpr std::size_t mostRatio = 150; ///< sheets of equal rows reach 50
constexpr const char* damaged = "压缩包的内容已损坏";

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
    , m_unpacker(libdeflate_alloc_decompressor(), libdeflate_free_decompressor)
    , m_room(std::min(mostExpanded, usualExpanded + file.size() * mostRatio))
{
    if (!m_unpacker)
        throw std::bad_alloc();
    zlib_filefunc64_def functions{Source::open, Source::read,  Source::write, Source::tell,
                                  Source::seek, Source::close, Source::error, m_source.get()};
    m_archive = unzOpen2_64("", &functions);
    requireFile(m_archive != nullptr, "压缩包已损坏或被截断");
}

Archive::~Archive()
{
    unzClose(m_archive);
}

/// The compressed bytes of the part that the library stands at.
Bytes Archive::currentPart(std::uint64_t size)
{
    int method = 0, level = 0;
    requireFile(unzOpenCurrentFile2(m_archive, &method, &level, 1) == UNZ_OK, damaged);
    const std::uint64_t place = unzGetCurrentFileZStreamPos64(m_archive);
    unzCloseCurrentFile(m_archive);
    const Bytes file = m_source->file;
    requireFile(place <= file.size() && size <= file.size() - place, damaged);
    return file.subspan(static_cast<std::size_t>(place), static_cast<std::size_t>(size));
}

/// Some programs put the separator of their system between the folders of a path.
bool Archive::goesTo(std::string path)
{
    constexpr int ignoringCase = 2;
    if (unzLocateFile(m_archive, path.c_str(), ignoringCase) == UNZ_OK)
        return true;
    std::ranges::replace(path, '/', '\\');
    return unzLocateFile(m_archive, path.c_str(), ignoringCase) == UNZ_OK;
}

std::optional<std::vector<char>> Archive::part(std::string_view path)
{
    if (!goesTo(std::string(path)))
        return std::nullopt;
    unz_file_info64 info{};
    requireFile(unzGetCurrentFileInfo64(m_archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) == UNZ_OK,
                damaged);
    constexpr unsigned isLocked = 1;
    requireFile((info.flag & isLocked) == 0 &&
                    (info.compression_method == 0 || info.compression_method == Z_DEFLATED),
                "压缩包的内容已损坏或加了密");
    requireFile(info.uncompressed_size <= m_room, "压缩包展开后大得不合常理");
    const Bytes packed = currentPart(info.compressed_size);
    std::vector<char> content(static_cast<std::size_t>(info.uncompressed_size));
    m_room -= content.size();
    if (info.compression_method == 0) {
        requireFile(packed.size() == content.size(), damaged);
        if (!content.empty())
            std::memcpy(content.data(), packed.data(), packed.size());
    } else {
        requireFile(libdeflate_deflate_decompress(m_unpacker.get(), packed.data(), packed.size(),
                                                  content.data(), content.size(),
                                                  nullptr) == LIBDEFLATE_SUCCESS,
                    damaged);
    }
    requireFile(libdeflate_crc32(0, content.data(), content.size()) == info.crc, "压缩包的校验和不对");
    return content;
}

} // namespace spreadsheet
