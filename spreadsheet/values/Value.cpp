#include "spreadsheet/values/Value.h"

namespace spreadsheet {

bool operator==(const Value& a, const Value& b)
{
    if (a.m_kind != b.m_kind)
        return false;
    switch (a.m_kind) {
    case ValueKind::empty:
        return true;
    case ValueKind::number:
        return a.m_number == b.m_number;
    case ValueKind::text:
        return a.textView() == b.textView();
    case ValueKind::boolean:
        return a.m_boolean == b.m_boolean;
    case ValueKind::error:
        return a.m_error == b.m_error;
    }
    return false;
}

} // namespace spreadsheet
