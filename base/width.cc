#include "base/width.h"

#include <clocale>
#include <cstdint>
#include <cwchar>

#include "base/text.h"

namespace olt {

namespace {

/// Makes a locale that of this thread while the object exists.
class LocaleInUse {
 public:
  explicit LocaleInUse(locale_t locale) : before_(uselocale(locale)) {}
  LocaleInUse(const LocaleInUse &) = delete;
  LocaleInUse &operator=(const LocaleInUse &) = delete;
  ~LocaleInUse() { uselocale(before_); }

 private:
  locale_t before_;
};

bool is_ascii(char character) {
  return static_cast<uint8_t>(character) < 0x80;
}

}  // namespace

Character first_character(std::string_view text) {
  if (is_ascii(text[0])) return {1, 1};
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  // A system without that locale knows no widths.
  if (utf8 == nullptr) return {1, continues_character(text[0]) ? size_t{0} : size_t{1}};
  LocaleInUse use(utf8);
  wchar_t wide = 0;
  std::mbstate_t state{};
  size_t bytes = std::mbrtowc(&wide, text.data(), text.size(), &state);
  if (bytes > text.size()) return {1, 1};
  int columns = wcwidth(wide);
  return {bytes, columns < 0 ? size_t{1} : static_cast<size_t>(columns)};
}

size_t display_width(std::string_view text) {
  size_t width = 0;
  while (!text.empty()) {
    auto [bytes, columns] = first_character(text);
    width += columns;
    text.remove_prefix(bytes);
  }
  return width;
}

std::string_view fitting(std::string_view text, size_t columns) {
  size_t end = 0;
  while (end < text.size()) {
    Character next = first_character(text.substr(end));
    if (next.columns > columns) break;
    columns -= next.columns;
    end += next.bytes;
  }
  return text.substr(0, end);
}

}  // namespace olt
