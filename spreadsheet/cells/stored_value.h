#pragma once
#include "spreadsheet/cells/CellBlock.h"

namespace spreadsheet {

/// The value that a block stores as a kind and eight bytes.
inline Value storedValue(ValueKind kind, const Payload& payload)
{
    switch (kind) {
    case ValueKind::empty:
        return {};
    case ValueKind::number:
        return payload.number;
    case ValueKind::text:
        return Text::share(payload.text);
    case ValueKind::boolean:
        return Value::boolean(payload.boolean);
    case ValueKind::error:
        return payload.error;
    }
    return {};
}

} // namespace spreadsheet
