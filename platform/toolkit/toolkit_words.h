#pragma once
#include <QString>

namespace selfreport {

/// What the toolkit calls something, in our words; an access key stays one. Null for what our windows never
/// show.
/// @param source  the toolkit's English text, such as "Cu&t"
QString ownWords(const char* source);

} // namespace selfreport
