#pragma once
#include "spreadsheet/files/placing/ContentError.h"

#include <flatbuffers/flatbuffers.h>

#include <cstdint>

namespace spreadsheet {

/// For vectors whose elements take eight bytes: the verifier looks at the place of a vector's length
/// only, so that the elements of a damaged one may lie askew.
/// @throws ContentError
template <typename T>
void requireAlignedElements(const flatbuffers::Vector<T>* vector)
{
    if (vector && vector->size() > 0) // an empty one is not aligned by the writer either
        requireContent(reinterpret_cast<std::uintptr_t>(vector->Data()) % 8 == 0, "数据的排列不对");
}

} // namespace spreadsheet
