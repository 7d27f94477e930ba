// UTF-8 text without regard to the case of its letters, the same in every locale.
#ifndef PLATFORM_TEXT_FOLD_CASE_H
#define PLATFORM_TEXT_FOLD_CASE_H

#include <cstdint>
#include <string_view>

namespace text {

// Takes the first character off a text that is not empty and returns its code point. A byte that is
// no part of a well-formed character is taken alone and given back above the range of Unicode, so
// that it equals itself and nothing else.
uint32_t take_character(std::string_view& text);

// The code point of the small letter for a capital one, and every other code point unchanged. Final
// sigma counts as sigma.
uint32_t fold_case(uint32_t character);

bool equal_without_case(std::string_view text1, std::string_view text2);

}  // namespace text

#endif
