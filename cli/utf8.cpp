#include "cli/utf8.h"

#include <algorithm>

namespace fileshare {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kCombining[] = {{0x300, 0x36F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}};
constexpr Range kWide[] = {
    {0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},
    {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t N>
bool within(const Range (&ranges)[N], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
    return range.first <= character && character <= range.last;
  });
}

// How a sequence begins, and the smallest value that needs its length: a smaller one is overlong.
struct Lead {
  std::size_t size;
  char32_t smallest;
  unsigned char mask;
  unsigned char pattern;
};
constexpr Lead kLeads[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

constexpr Utf8Character kInvalid{0xFFFD, 1, false};

Utf8Character decode(std::string_view text, const Lead& lead) {
  if (text.size() < lead.size) return kInvalid;
  char32_t value = static_cast<unsigned char>(text[0]) & static_cast<unsigned char>(~lead.mask);
  for (std::size_t i = 1; i < lead.size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return kInvalid;
    value = value << 6 | (byte & 0x3F);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < lead.smallest || value > 0x10FFFF || surrogate) return kInvalid;
  return {value, lead.size, true};
}

}  // namespace

Utf8Character first_character(std::string_view text) {
  if (text.empty()) return {};
  const auto byte = static_cast<unsigned char>(text[0]);
  for (const Lead& lead : kLeads) {
    if ((byte & lead.mask) == lead.pattern) return decode(text, lead);
  }
  return kInvalid;
}

bool is_valid_utf8(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character next = first_character(text);
    if (!next.valid) return false;
    text.remove_prefix(next.size);
  }
  return true;
}

bool is_control(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

std::size_t columns_of(char32_t character) {
  if (within(kCombining, character)) return 0;
  return within(kWide, character) ? 2 : 1;
}

std::size_t columns_of(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const Utf8Character next = first_character(text);
    columns += columns_of(next.value);
    text.remove_prefix(next.size);
  }
  return columns;
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Utf8Character next = first_character(text);
    if (next.valid && !is_control(next.value)) {
      shown += text.substr(0, next.size);
    } else {
      shown += '?';
    }
    text.remove_prefix(next.size);
  }
  return shown;
}

std::string cut_to_columns(std::string_view text, std::size_t columns) {
  if (columns_of(text) <= columns) return std::string(text);
  std::string kept;
  std::size_t used = 1;  // the "…"
  while (!text.empty()) {
    const Utf8Character next = first_character(text);
    used += columns_of(next.value);
    if (used > columns) break;
    kept += text.substr(0, next.size);
    text.remove_prefix(next.size);
  }
  return kept + "…";
}

}  // namespace fileshare
