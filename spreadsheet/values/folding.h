#pragma once
#include <string>
#include <string_view>

namespace spreadsheet {

/// Letter case and full or half width folded, character by character, for comparing texts.
std::string foldedText(std::string_view text);

/// One letter case and one width; see foldedText.
char32_t foldedCharacter(char32_t c);
char32_t upperCharacter(char32_t c);
char32_t lowerCharacter(char32_t c);
bool isLetter(char32_t c);

} // namespace spreadsheet
