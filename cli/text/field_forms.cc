#include "cli/text/field_forms.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>

#include "base/mac.h"
#include "box/wire/records.h"
#include "cli/text/items.h"
#include "cli/text/number_text.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;

namespace {

constexpr size_t kWord = sizeof(uint32_t);

// The words of a target that name an ONT, and the bytes up to a UNI port.
constexpr size_t kNameWords = offsetof(box::OntTarget, target_kind) / kWord;
constexpr size_t kPortEnd = offsetof(box::OntTarget, part) + kWord;

uint32_t longest_number(const Field &field) {
  return field.width < kWord ? std::min<uint32_t>(field.most, UINT16_MAX) : field.most;
}

std::vector<uint32_t> parse_numbers(std::string_view text, char separator) {
  std::vector<uint32_t> numbers;
  for (const Item &item : split_items(text, separator)) {
    numbers.push_back(parse_number(item.text, UINT32_MAX));
  }
  return numbers;
}

Bytes bytes_of_words(const std::vector<uint32_t> &words, size_t width) {
  Bytes bytes(width);
  if (!words.empty()) std::memcpy(bytes.data(), words.data(), words.size() * kWord);
  return bytes;
}

// Texts.

std::string expected_text(const Field &field) {
  return fmt::format("text of at most {} bytes", field.longest_text());
}

std::string described_text(const Field & /*field*/) {
  return "text";
}

std::string example_text(const Field &field) {
  return std::string_view(field.name) == "description" ? "uplink" : "operator";
}

Bytes parse_text(const Field &field, std::string_view text) {
  if (text.size() > field.longest_text()) throw BadValue("{} bytes given", text.size());
  Bytes bytes(text.begin(), text.end());
  bytes.resize(field.width);
  return bytes;
}

Value value_of_text(ByteView bytes) {
  return text_in(bytes);
}

std::string described_listing(const Field & /*field*/) {
  return "the name of a listing, followed by its text";
}

// Numbers.

std::string expected_number(const Field &field) {
  return fmt::format("a number from 0 to {}", longest_number(field));
}

std::string described_number(const Field & /*field*/) {
  return "a number";
}

std::string example_number(const Field & /*field*/) {
  return "1";
}

Bytes parse_number_field(const Field &field, std::string_view text) {
  uint32_t number = parse_number(text, longest_number(field));
  // Numbers are little-endian on the wire and on every machine that the library runs on.
  const auto *bytes = reinterpret_cast<const uint8_t *>(&number);
  return {bytes, bytes + field.width};
}

Value value_of_number(ByteView bytes) {
  uint32_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

// Words.

std::string expected_words(const Field &field) {
  return fmt::format("up to {} numbers as 10,20", field.width / kWord);
}

std::string described_words(const Field &field) {
  return fmt::format("{} numbers", field.width / kWord);
}

std::string example_words(const Field & /*field*/) {
  return "1,1";
}

Bytes parse_words(const Field &field, std::string_view text) {
  std::vector<uint32_t> words = parse_numbers(text, ',');
  if (words.size() > field.width / kWord) throw BadValue("{} numbers given", words.size());
  return bytes_of_words(words, field.width);
}

Value value_of_words(ByteView bytes) {
  std::vector<uint32_t> words(bytes.size() / kWord);
  std::memcpy(words.data(), bytes.data(), words.size() * kWord);
  return words;
}

bool fits_words(std::string_view text) {
  return text.find(',') != std::string_view::npos && text.find(':') == std::string_view::npos;
}

// MAC addresses.

constexpr const char *kExampleMac = "02:00:00:00:00:01";

std::string expected_mac(const Field & /*field*/) {
  return fmt::format("an address as {}", kExampleMac);
}

std::string described_mac(const Field & /*field*/) {
  return "a MAC address";
}

std::string example_mac(const Field & /*field*/) {
  return kExampleMac;
}

Bytes parse_mac(const Field & /*field*/, std::string_view text) {
  std::optional<Mac> mac = to_mac(text);
  if (!mac) throw BadValue("'{}' is not a MAC address", printable(text));
  return {mac->begin(), mac->end()};
}

Value value_of_mac(ByteView bytes) {
  return mac_text(bytes.first<sizeof(Mac)>());
}

bool fits_mac(std::string_view text) {
  return to_mac(text).has_value();
}

// ONTs.

bool has_port(const Field &field) {
  return field.width >= kPortEnd;
}

std::string expected_ont(const Field &field) {
  return has_port(field) ? "an ONT as 1/2/3, its UNI port as 1/2/3:4" : "an ONT as 1/2/3";
}

std::string example_ont(const Field & /*field*/) {
  return "1/2/3";
}

Bytes parse_ont(const Field &field, std::string_view text) {
  size_t colon = text.find(':');
  std::vector<uint32_t> target = parse_numbers(text.substr(0, colon), '/');
  if (target.size() != kNameWords) throw BadValue("'{}' given", printable(text));
  if (has_port(field)) target.push_back(box::kThisRow);
  if (colon != std::string_view::npos) {
    if (!has_port(field)) throw BadValue("a UNI port is not taken here");
    target.push_back(parse_number(text.substr(colon + 1), UINT32_MAX));
  }
  return bytes_of_words(target, field.width);
}

bool fits_ont(std::string_view text) {
  return text.find('/') != std::string_view::npos;
}

// Bytes.

std::string expected_bytes(const Field &field) {
  return fmt::format("{} bytes as HEX", field.width);
}

std::string described_bytes(const Field &field) {
  return fmt::format("{} bytes", field.width);
}

std::string example_bytes(const Field &field) {
  return field.width > kWord ? "0:01,4:01" : "0:01";
}

Bytes parse_bytes(const Field &field, std::string_view text) {
  return of_size(field.width, parse_hex(text));
}

Value value_of_bytes(ByteView bytes) {
  return Bytes(bytes.begin(), bytes.end());
}

bool fits_no_form(std::string_view /*text*/) {
  return false;
}

constexpr FieldForm kForms[] = {
    {FieldKind::kText, expected_text, described_text, example_text, parse_text, value_of_text,
     nullptr},
    {FieldKind::kPadded, expected_text, described_text, example_text, parse_text, value_of_text,
     nullptr},
    {FieldKind::kListing, expected_text, described_listing, example_text, parse_text, value_of_text,
     nullptr},
    {FieldKind::kWord, expected_number, described_number, example_number, parse_number_field,
     value_of_number, nullptr},
    {FieldKind::kHalfWord, expected_number, described_number, example_number, parse_number_field,
     value_of_number, nullptr},
    {FieldKind::kWords, expected_words, described_words, example_words, parse_words, value_of_words,
     fits_words},
    {FieldKind::kMac, expected_mac, described_mac, example_mac, parse_mac, value_of_mac, fits_mac},
    {FieldKind::kOnt, expected_ont, described_bytes, example_ont, parse_ont, value_of_bytes,
     fits_ont},
    {FieldKind::kBytes, expected_bytes, described_bytes, example_bytes, parse_bytes, value_of_bytes,
     fits_no_form},
};

constexpr bool is_in_order() {
  for (size_t i = 0; i < std::size(kForms); ++i) {
    if (kForms[i].kind != static_cast<FieldKind>(i)) return false;
  }
  return true;
}
static_assert(is_in_order());

}  // namespace

const FieldForm &form_of(FieldKind kind) {
  return kForms[static_cast<size_t>(kind)];
}

Bytes parse_hex(std::string_view text) {
  std::optional<Bytes> bytes = from_hex(text);
  if (!bytes) throw BadValue("'{}' is not pairs of hex digits", printable(text));
  return *bytes;
}

uint32_t parse_number(std::string_view text, uint32_t most) {
  std::optional<uint32_t> number = number_in(text, most);
  if (!number) throw BadValue("'{}' given", printable(text));
  return *number;
}

Bytes of_size(size_t size, Bytes bytes) {
  if (bytes.size() != size) throw BadValue("{} given", counted(bytes.size(), "byte"));
  return bytes;
}

}  // namespace olt::cli
