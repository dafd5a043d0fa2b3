#pragma once
#include "spreadsheet/files/xlsx/XmlWriter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace spreadsheet {

/// Writes bytes at a place of a file that grows, mostly at its end.
using PutBytes = std::function<void(std::size_t place, std::span<const std::byte> bytes)>;

/// Makes a zipped file, one part behind the other, and keeps none of it. Equal parts make equal bytes: no
/// time is noted.
class ArchiveWriter {
public:
    explicit ArchiveWriter(PutBytes put);
    ~ArchiveWriter();
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    /// Adds a part, an XML document that `fill` writes behind its declaration.
    /// @throws ContentError if it grows beyond 4 GB; whatever `put` throws
    void part(const std::string& path, const std::function<void(XmlWriter&)>& fill);
    /// Writes the list of all parts; nothing can be added from then on.
    void finish();

private:
    void require(int result) const;

    struct Target;
    std::unique_ptr<Target> m_target;
    void* m_archive;
};

} // namespace spreadsheet
