#pragma once
#include "spreadsheet/files/xlsx/XmlWriter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace spreadsheet {

/// Makes a zipped file in memory, one part behind the other. Equal parts make equal bytes: no time is noted.
class ArchiveWriter {
public:
    ArchiveWriter();
    ~ArchiveWriter();
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    /// Adds a part, an XML document that `fill` writes behind its declaration.
    /// @throws ContentError if it grows beyond 4 GB
    void part(const std::string& path, const std::function<void(XmlWriter&)>& fill);
    /// The whole file; nothing can be added from then on.
    std::vector<std::byte> take();

private:
    struct Target;
    std::unique_ptr<Target> m_target;
    void* m_archive;
};

} // namespace spreadsheet
