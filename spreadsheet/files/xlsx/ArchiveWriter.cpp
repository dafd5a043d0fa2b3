#include "spreadsheet/files/xlsx/ArchiveWriter.h"

#include "spreadsheet/files/ole2/little_endian.h"
#include "spreadsheet/files/placing/ContentError.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <minizip/zip.h>
#include <utility>
#include <vector>

namespace spreadsheet {

namespace {

constexpr int level = 2; ///< of 9: half the time of 5 for an eighth more of the size; 1 saves little more

} // namespace

/// The file as the library writes it: in many small pieces, and it goes back to note the size of each part.
/// What writing throws must not pass through the library.
struct ArchiveWriter::Target {
    PutBytes put;
    std::size_t at = 0, size = 0;
    std::exception_ptr problem{};
    std::size_t start = 0; ///< place of what waits
    std::vector<std::byte> waiting{};

    void flush()
    {
        if (!waiting.empty())
            put(start, waiting);
        waiting.clear();
    }
    void take(Bytes bytes)
    {
        constexpr std::size_t most = 1 << 17;
        const bool goesOn = at >= start && at <= start + waiting.size() && at - start + bytes.size() <= most;
        if (!goesOn) {
            flush();
            start = at;
        }
        const std::size_t place = at - start;
        waiting.resize(std::max(waiting.size(), place + bytes.size()));
        std::ranges::copy(bytes, waiting.begin() + static_cast<std::ptrdiff_t>(place));
        at += bytes.size();
        size = std::max(size, at);
    }

    static void* open(void* opaque, const void*, int) { return opaque; }
    static uLong read(void*, void*, void*, uLong) { return 0; }
    static uLong write(void* opaque, void*, const void* bytes, uLong count)
    {
        auto& target = *static_cast<Target*>(opaque);
        try {
            target.take({static_cast<const std::byte*>(bytes), count});
        } catch (...) {
            target.problem = std::current_exception();
            return 0;
        }
        return count;
    }
    static ZPOS64_T tell(void* opaque, void*) { return static_cast<Target*>(opaque)->at; }
    static long seek(void* opaque, void*, ZPOS64_T offset, int origin)
    {
        auto& target = *static_cast<Target*>(opaque);
        const std::size_t from = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? target.at : target.size;
        if (offset > target.size - from)
            return -1;
        target.at = from + static_cast<std::size_t>(offset);
        return 0;
    }
    static int close(void*, void*) { return 0; }
    static int error(void*, void*) { return 0; }
};

ArchiveWriter::ArchiveWriter(PutBytes put)
    : m_target(std::make_unique<Target>(Target{std::move(put)}))
{
    zlib_filefunc64_def functions{Target::open, Target::read,  Target::write, Target::tell,
                                  Target::seek, Target::close, Target::error, m_target.get()};
    m_archive = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &functions);
    require(m_archive ? ZIP_OK : ZIP_INTERNALERROR);
}

ArchiveWriter::~ArchiveWriter()
{
    if (m_archive)
        zipClose(m_archive, nullptr);
}

void ArchiveWriter::require(int result) const
{
    if (m_target->problem)
        std::rethrow_exception(m_target->problem);
    if (result != ZIP_OK)
        throw ContentError("无法写入 .xlsx 文件: 不能压缩");
}

void ArchiveWriter::part(const std::string& path, const std::function<void(XmlWriter&)>& fill)
{
    zip_fileinfo info{};
    info.tmz_date = {0, 0, 0, 1, 0, 1980}; // the first day that the format knows
    require(zipOpenNewFileInZip(m_archive, path.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                level));
    std::uint64_t size = 0;
    XmlWriter xml([&](std::string_view piece) {
        size += piece.size();
        if (size > std::numeric_limits<std::uint32_t>::max())
            throw ContentError("无法写入 .xlsx 文件: 工作表太大");
        require(zipWriteInFileInZip(m_archive, piece.data(), static_cast<unsigned>(piece.size())));
    });
    xml.raw("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n");
    fill(xml);
    xml.flush();
    require(zipCloseFileInZip(m_archive));
}

void ArchiveWriter::finish()
{
    require(zipClose(std::exchange(m_archive, nullptr), nullptr));
    m_target->flush();
}

} // namespace spreadsheet
