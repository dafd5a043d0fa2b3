#include "spreadsheet/values/case_fold.h"

#include "text/ascii.h"

#include <cstdlib>
#include <utf8proc.h>

namespace spreadsheet {

std::string foldedName(std::string_view name)
{
    std::string folded(name);
    bool ascii = true;
    for (char& c : folded) {
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
        c = ascii::upper(c);
    }
    if (ascii)
        return folded;
    utf8proc_uint8_t* mapped = nullptr;
    const auto size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(folded.data()),
                                   static_cast<utf8proc_ssize_t>(folded.size()), &mapped, UTF8PROC_CASEFOLD);
    if (size < 0)
        return folded; // no valid UTF-8: compared byte by byte
    std::string result(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(size));
    std::free(mapped);
    return result;
}

} // namespace spreadsheet
