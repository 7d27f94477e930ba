#include "platform/text/fold_case.h"

#include <algorithm>

namespace text {
namespace {

constexpr uint32_t kBeyondUnicode = 0x110000;

// Capital letters in a row: each `step`-th code point from `first` to `last` is one, and `distance`
// further on stands its small letter. The C library's tables depend on a locale that a device may
// not have, and these alphabets are the ones whose letters have case.
struct Capitals {
  uint32_t first;
  uint32_t last;
  uint32_t step;
  int32_t distance;
};

constexpr Capitals kCapitals[] = {
    {0x0041, 0x005A, 1, 32},    // ASCII
    {0x00C0, 0x00D6, 1, 32},    // Latin-1
    {0x00D8, 0x00DE, 1, 32},    //
    {0x0100, 0x012E, 2, 1},     // Latin Extended-A
    {0x0132, 0x0136, 2, 1},     //
    {0x0139, 0x0147, 2, 1},     //
    {0x014A, 0x0176, 2, 1},     //
    {0x0178, 0x0178, 1, -121},  //
    {0x0179, 0x017D, 2, 1},     //
    {0x01A0, 0x01A4, 2, 1},     // Latin Extended-B: Vietnamese, Pinyin, Romanian
    {0x01AF, 0x01AF, 1, 1},     //
    {0x01CD, 0x01DB, 2, 1},     //
    {0x01DE, 0x01EE, 2, 1},     //
    {0x01F8, 0x021E, 2, 1},     //
    {0x0222, 0x0232, 2, 1},     //
    {0x0386, 0x0386, 1, 38},    // Greek
    {0x0388, 0x038A, 1, 37},    //
    {0x038C, 0x038C, 1, 64},    //
    {0x038E, 0x038F, 1, 63},    //
    {0x0391, 0x03A1, 1, 32},    //
    {0x03A3, 0x03AB, 1, 32},    //
    {0x03C2, 0x03C2, 1, 1},     // final sigma
    {0x0400, 0x040F, 1, 80},    // Cyrillic
    {0x0410, 0x042F, 1, 32},    //
    {0x0460, 0x0480, 2, 1},     //
    {0x048A, 0x04BE, 2, 1},     //
    {0x04C0, 0x04C0, 1, 15},    //
    {0x04C1, 0x04CD, 2, 1},     //
    {0x04D0, 0x052E, 2, 1},     //
    {0x0531, 0x0556, 1, 48},    // Armenian
    {0x1E00, 0x1E94, 2, 1},     // Latin Extended Additional
    {0x1EA0, 0x1EFE, 2, 1},     //
    {0xFF21, 0xFF3A, 1, 32},    // full-width Latin
};

// How a well-formed character of several bytes begins: the lead byte's fixed bits, and the least
// code point that needs as many bytes.
struct Form {
  uint8_t mask;
  uint8_t lead;
  uint32_t least;
};
constexpr Form kForms[] = {{0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};

// The bytes of the well-formed character of several bytes at the beginning; 0 without one.
size_t decode(std::string_view text, uint32_t& character) {
  const auto byte = [&](size_t at) { return static_cast<uint8_t>(text[at]); };
  size_t length = 2;
  for (const Form& form : kForms) {
    if ((byte(0) & form.mask) == form.lead) {
      if (text.size() < length) return 0;
      character = byte(0) & static_cast<uint8_t>(~form.mask);
      for (size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0) != 0x80) return 0;
        character = character << 6 | (byte(at) & 0x3F);
      }
      const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
      return character >= form.least && character < kBeyondUnicode && !surrogate ? length : 0;
    }
    ++length;
  }
  return 0;
}

}  // namespace

uint32_t take_character(std::string_view& text) {
  uint32_t character = static_cast<uint8_t>(text.front());
  size_t length = 1;
  if (character >= 0x80) {
    length = decode(text, character);
    if (length == 0) {
      length = 1;
      character = kBeyondUnicode + static_cast<uint8_t>(text.front());
    }
  }
  text.remove_prefix(length);
  return character;
}

uint32_t fold_case(uint32_t character) {
  for (const Capitals& row : kCapitals) {
    if (character < row.first) break;
    if (character > row.last || (character - row.first) % row.step != 0) continue;
    return static_cast<uint32_t>(static_cast<int32_t>(character) + row.distance);
  }
  return character;
}

bool equal_without_case(std::string_view text1, std::string_view text2) {
  while (!text1.empty() && !text2.empty()) {
    if (fold_case(take_character(text1)) != fold_case(take_character(text2))) return false;
  }
  return text1.empty() && text2.empty();
}

}  // namespace text
