#include "spreadsheet/files/content/content_frame.h"

#include "spreadsheet/files/placing/ContentError.h"

#include <zstd.h>
#include <zstd_errors.h>

#include <array>
#include <cstring>
#include <string>

namespace spreadsheet {

namespace {

/// The first byte is no text, and a transfer that converts line ends damages the next ones.
constexpr std::array<unsigned char, 8> magic{0x89, 'S', 'S', '7', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t headerSize = magic.size() + 4;

/// Numbers hardly compress; a higher level costs time and gains little.
constexpr int compressionLevel = 1;

/// A block of 128 KiB takes four bytes at least.
constexpr std::size_t maxExpansion = 32'768;

struct Compressor {
    ZSTD_CCtx* context = ZSTD_createCCtx();
    Compressor() = default;
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { ZSTD_freeCCtx(context); }
};

std::size_t declaredSize(std::span<const std::byte> frame)
{
    const unsigned long long size = ZSTD_getFrameContentSize(frame.data(), frame.size());
    requireContent(size != ZSTD_CONTENTSIZE_ERROR, "压缩数据的开头不对");
    requireContent(size != ZSTD_CONTENTSIZE_UNKNOWN, "没有注明展开后的大小");
    requireContent(size <= maxExpandedContent, "展开后的大小超过上限");
    requireContent(size / maxExpansion <= frame.size(), "注明的展开大小与数据不符");
    return static_cast<std::size_t>(size);
}

bool isContent(std::span<const std::byte> file)
{
    return file.size() >= magic.size() && std::memcmp(file.data(), magic.data(), magic.size()) == 0;
}

/// @param file  at least a header long
std::uint32_t versionIn(std::span<const std::byte> file)
{
    std::uint32_t version = 0;
    for (std::size_t i = 0; i < 4; ++i)
        version |= std::to_integer<std::uint32_t>(file[magic.size() + i]) << 8 * i;
    return version;
}

/// Refuses what is not this format or was written by a later program.
void checkHeader(std::span<const std::byte> file)
{
    if (!isContent(file))
        throw ContentError("报表内容无法识别: 这不是报表文件");
    requireContent(file.size() > headerSize, "文件不完整");
    const std::uint32_t version = versionIn(file);
    requireContent(version != 0, "版本号不对");
    if (version > newestContentVersion)
        throw ContentError("报表由更新的版本保存(内容版本 " + std::to_string(version) +
                           "),请升级程序后再打开");
}

} // namespace

std::vector<std::byte> packContent(std::span<const std::byte> expanded, std::uint32_t version)
{
    if (expanded.size() > maxExpandedContent)
        throw ContentError("报表内容太大,无法保存");
    std::vector<std::byte> file(headerSize + ZSTD_compressBound(expanded.size()));
    std::memcpy(file.data(), magic.data(), magic.size());
    for (std::size_t i = 0; i < 4; ++i)
        file[magic.size() + i] = static_cast<std::byte>(version >> 8 * i);

    const Compressor compressor;
    ZSTD_CCtx_setParameter(compressor.context, ZSTD_c_compressionLevel, compressionLevel);
    ZSTD_CCtx_setParameter(compressor.context, ZSTD_c_checksumFlag, 1);
    const std::size_t size = ZSTD_compress2(compressor.context, file.data() + headerSize,
                                            file.size() - headerSize, expanded.data(), expanded.size());
    if (ZSTD_isError(size))
        throw ContentError(std::string("报表内容无法压缩: ") + ZSTD_getErrorName(size));
    file.resize(headerSize + size);
    return file;
}

bool isOfLaterVersion(std::span<const std::byte> file)
{
    return isContent(file) && file.size() > headerSize && versionIn(file) > newestContentVersion;
}

ExpandedContent unpackContent(std::span<const std::byte> file)
{
    checkHeader(file);
    const auto frame = file.subspan(headerSize);
    ExpandedContent content;
    content.size = declaredSize(frame);
    // Bytes after the frame would be read as another one.
    const std::size_t frameSize = ZSTD_findFrameCompressedSize(frame.data(), frame.size());
    requireContent(!ZSTD_isError(frameSize), "压缩数据不完整");
    requireContent(frameSize == frame.size(), "压缩数据之后还有多余的内容");

    // Left unset: memory that the data does not really fill is never touched.
    content.bytes = std::make_unique_for_overwrite<std::byte[]>(content.size);
    const std::size_t size = ZSTD_decompress(content.bytes.get(), content.size, frame.data(), frame.size());
    if (ZSTD_isError(size))
        refuseContent(ZSTD_getErrorCode(size) == ZSTD_error_checksum_wrong ? "校验和不符"
                                                                           : "压缩数据无法展开");
    requireContent(size == content.size, "展开后的大小不符");
    return content;
}

} // namespace spreadsheet
