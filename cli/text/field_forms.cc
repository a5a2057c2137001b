#include "cli/text/field_forms.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>
#include <vector>

#include "base/mac.h"
#include "box/wire/records.h"
#include "cli/text/error.h"
#include "cli/text/items.h"
#include "cli/text/number_text.h"
#include "cli/text/words.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;
using catalog::ValueName;
using nlohmann::ordered_json;

namespace {

using Numbers = std::vector<uint32_t>;

constexpr size_t kWord = sizeof(uint32_t);

// The words of a target that name an ONT, and the bytes up to a UNI port.
constexpr size_t kNameWords = offsetof(box::OntTarget, target_kind) / kWord;
constexpr size_t kPortEnd = offsetof(box::OntTarget, part) + kWord;

// Numbers are little-endian on the wire and on every machine that the tools run on.

uint32_t number_of(ByteView bytes) {
  uint32_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

Bytes bytes_of(uint32_t number, size_t width) {
  const auto *bytes = reinterpret_cast<const uint8_t *>(&number);
  return {bytes, bytes + width};
}

Numbers numbers_of(ByteView bytes, size_t width) {
  Numbers numbers;
  for (size_t at = 0; at + width <= bytes.size(); at += width) {
    numbers.push_back(number_of(bytes.subspan(at, width)));
  }
  return numbers;
}

Bytes bytes_of(const Numbers &numbers, size_t width, size_t all) {
  Bytes bytes;
  for (uint32_t number : numbers) {
    Bytes one = bytes_of(number, width);
    bytes.insert(bytes.end(), one.begin(), one.end());
  }
  bytes.resize(all);
  return bytes;
}

uint32_t largest(const Field &field) {
  uint32_t largest = field.width < kWord ? (uint32_t{1} << 8 * field.width) - 1 : UINT32_MAX;
  return std::min(field.max, largest);
}

Numbers parse_numbers(std::string_view text, char separator) {
  Numbers numbers;
  for (const Item &item : split_items(text, separator)) {
    numbers.push_back(parse_number(item.text, UINT32_MAX));
  }
  return numbers;
}

/// The field's bytes in hex; nothing when the text is anything else.
std::optional<Bytes> hex_of(const Field &field, std::string_view text) {
  std::optional<Bytes> bytes = from_hex(text);
  return bytes && bytes->size() == field.width ? bytes : std::nullopt;
}

std::string nothing(const Field & /*field*/) {
  return "";
}

std::string text_of_json(const ordered_json &json) {
  return json.is_string() ? json.get<std::string>() : json.dump();
}

// Texts. A backslash introduces \xNN, or is doubled.

std::string expected_text(const Field &field) {
  return fmt::format("text of at most {} bytes", field.longest_text());
}

std::string described_text(const Field & /*field*/) {
  return "text";
}

std::string example_text(const Field &field) {
  return std::string_view(field.name) == "description" ? "uplink" : "operator";
}

std::optional<uint8_t> escaped_byte(std::string_view text) {
  if (text.size() < 4 || text[1] != 'x') return std::nullopt;
  std::optional<Bytes> byte = from_hex(text.substr(2, 2));
  if (!byte || byte->size() != 1) return std::nullopt;
  return byte->front();
}

std::string unescaped(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    size_t taken = 1;
    char character = text[0];
    if (std::optional<uint8_t> byte = character == '\\' ? escaped_byte(text) : std::nullopt) {
      character = static_cast<char>(*byte);
      taken = 4;
    } else if (text.starts_with("\\\\")) {
      taken = 2;
    }
    plain += character;
    text.remove_prefix(taken);
  }
  return plain;
}

Bytes parse_text(const Field &field, std::string_view text) {
  std::string plain = unescaped(text);
  if (plain.size() > field.longest_text()) throw BadValue("{} bytes given", plain.size());
  Bytes bytes(plain.begin(), plain.end());
  bytes.resize(field.width);
  return bytes;
}

std::string doubled_backslashes(std::string_view text) {
  std::string doubled;
  for (char character : text) doubled.append(character == '\\' ? 2 : 1, character);
  return doubled;
}

/// A text that would be taken for JSON begins with an escaped quotation mark.
std::string text_of_text(const Field & /*field*/, ByteView bytes) {
  std::string text = printable(doubled_backslashes(text_in(bytes)));
  if (text.starts_with('"') && ordered_json::accept(text)) text.replace(0, 1, "\\x22");
  return text;
}

ordered_json json_of_text(const Field & /*field*/, ByteView bytes) {
  return text_in(bytes);
}

std::string described_listing(const Field & /*field*/) {
  return "the name of a listing, followed by its text";
}

// Numbers.

const ValueName *name_of(const Field &field, uint32_t number) {
  for (const ValueName &value : field.values) {
    if (value.value == number) return &value;
  }
  return nullptr;
}

std::optional<uint32_t> named_number(const Field &field, std::string_view name) {
  for (const ValueName &value : field.values) {
    if (value.name == name) return value.value;
  }
  return std::nullopt;
}

std::string with_unit(const Field &field, std::string text) {
  return field.unit == nullptr ? text : fmt::format("{} {}", text, field.unit);
}

std::string_view without_unit(const Field &field, std::string_view text) {
  if (field.unit == nullptr || !text.ends_with(field.unit)) return text;
  text.remove_suffix(std::string_view(field.unit).size());
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

std::string names_of(const Field &field) {
  std::string names;
  for (const ValueName &value : field.values) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", value.name);
  }
  return names;
}

std::string expected_number(const Field &field) {
  std::string number = largest(field) == UINT32_MAX
                           ? "a number"
                           : fmt::format("a number from 0 to {}", largest(field));
  if (field.unit != nullptr) number = fmt::format("{} in {}", number, field.unit);
  return field.values.empty() ? number : fmt::format("{}, or {}", names_of(field), number);
}

std::string described_number(const Field &field) {
  if (field.unit != nullptr) return fmt::format("a number in {}", field.unit);
  return field.values.empty() ? "a number" : names_of(field);
}

std::string expected_vlan(const Field &field) {
  return field.values.empty() ? "a VLAN id" : fmt::format("{}, or a VLAN id", names_of(field));
}

std::string described_vlan(const Field & /*field*/) {
  return "a VLAN id";
}

std::string example_number(const Field &field) {
  if (field.values.empty()) return "1";
  return field.role == catalog::Role::kSelector ? field.values.front().name
                                                : field.values.back().name;
}

Bytes parse_number_field(const Field &field, std::string_view text) {
  std::optional<uint32_t> number = named_number(field, text);
  return bytes_of(number ? *number : parse_number(without_unit(field, text), largest(field)),
                  field.width);
}

std::string text_of_number(const Field &field, ByteView bytes) {
  uint32_t number = number_of(bytes);
  const ValueName *named = name_of(field, number);
  return named != nullptr ? named->name : with_unit(field, fmt::to_string(number));
}

ordered_json json_of_number(const Field &field, ByteView bytes) {
  uint32_t number = number_of(bytes);
  const ValueName *named = name_of(field, number);
  return named != nullptr ? ordered_json(named->name) : ordered_json(number);
}

// Numbers with a sign, and with digits after the point.

int64_t signed_number(ByteView bytes) {
  uint32_t number = number_of(bytes);
  size_t unused = 32 - 8 * std::min(bytes.size(), kWord);
  return static_cast<int32_t>(number << unused) >> unused;
}

int64_t scale_of(const Field &field) {
  int64_t scale = 1;
  for (uint8_t i = 0; i < field.decimals; ++i) scale *= 10;
  return scale;
}

std::string decimal_text(const Field &field, int64_t number) {
  int64_t scale = scale_of(field);
  std::string text = fmt::format("{}{}", number < 0 ? "-" : "", std::abs(number) / scale);
  if (field.decimals > 0) text += fmt::format(".{:0{}}", std::abs(number) % scale, field.decimals);
  return text;
}

std::string expected_signed(const Field &field) {
  int64_t end = int64_t{1} << (8 * field.width - 1);
  std::string text = fmt::format("a number from {} to {}", decimal_text(field, -end),
                                 decimal_text(field, end - 1));
  return field.unit == nullptr ? text : fmt::format("{} in {}", text, field.unit);
}

std::string example_signed(const Field & /*field*/) {
  return "-1";
}

/// JSON has an exponent in small numbers, and in some others more digits than they need:
/// -0.021329999999999998 for -0.02133.
std::string plain_decimal(const Field &field, std::string_view text) {
  ordered_json json = ordered_json::parse(text, nullptr, false);
  if (!json.is_number_float()) return std::string(text);
  std::string plain = fmt::format("{:.{}f}", json.get<double>(), field.decimals);
  return ordered_json::parse(plain) == json ? plain : std::string(text);
}

Bytes parse_signed(const Field &field, std::string_view text) {
  if (text.starts_with("0x")) return bytes_of(parse_number(text, largest(field)), field.width);
  std::string number_text = plain_decimal(field, without_unit(field, text));
  std::string_view digits = number_text;
  bool is_negative = digits.starts_with('-');
  if (is_negative) digits.remove_prefix(1);
  size_t point = digits.find('.');
  std::string_view fraction = point == std::string_view::npos ? "" : digits.substr(point + 1);
  if (fraction.size() > field.decimals || (point != std::string_view::npos && fraction.empty())) {
    throw BadValue("'{}' given", printable(text));
  }
  std::string whole(digits.substr(0, point));
  whole += fraction;
  whole.append(field.decimals - fraction.size(), '0');
  uint32_t end = uint32_t{1} << (8 * field.width - 1);
  std::optional<uint32_t> number = number_in(whole, is_negative ? end : end - 1);
  if (!number) throw BadValue("'{}' given", printable(text));
  return bytes_of(is_negative ? 0 - *number : *number, field.width);
}

std::string text_of_signed(const Field &field, ByteView bytes) {
  return with_unit(field, decimal_text(field, signed_number(bytes)));
}

ordered_json json_of_signed(const Field &field, ByteView bytes) {
  return ordered_json::parse(decimal_text(field, signed_number(bytes)));
}

// Bits with names, separated by commas; those without as a number.

std::string expected_flags(const Field &field) {
  return fmt::format("none, some of {}, or a number from 0 to {}", names_of(field), largest(field));
}

std::string described_flags(const Field &field) {
  return fmt::format("some of {}", names_of(field));
}

std::string example_flags(const Field &field) {
  return field.values.empty() ? "none" : field.values.front().name;
}

Bytes parse_flags(const Field &field, std::string_view text) {
  uint32_t flags = 0;
  for (const Item &item : split_items(text == "none" ? "" : text, ',')) {
    std::optional<uint32_t> flag = named_number(field, item.text);
    flags |= flag ? *flag : parse_number(item.text, largest(field));
  }
  return bytes_of(flags, field.width);
}

std::vector<std::string> flags_in(const Field &field, ByteView bytes) {
  uint32_t rest = number_of(bytes);
  std::vector<std::string> flags;
  for (const ValueName &value : field.values) {
    if (value.value == 0 || (rest & value.value) != value.value) continue;
    flags.emplace_back(value.name);
    rest &= ~value.value;
  }
  if (rest != 0) flags.push_back(fmt::format("{:#x}", rest));
  return flags;
}

std::string text_of_flags(const Field &field, ByteView bytes) {
  std::vector<std::string> flags = flags_in(field, bytes);
  return flags.empty() ? "none" : fmt::format("{}", fmt::join(flags, ","));
}

ordered_json json_of_flags(const Field &field, ByteView bytes) {
  return flags_in(field, bytes);
}

// Durations in seconds.

struct TimeUnit {
  char letter;
  uint32_t seconds;
};
constexpr TimeUnit kTimeUnits[] = {{'d', 86'400}, {'h', 3'600}, {'m', 60}, {'s', 1}};

std::string expected_duration(const Field & /*field*/) {
  return "a time as 1d2h3m4s, or a number of seconds";
}

std::string described_duration(const Field & /*field*/) {
  return "a time as 1d2h3m4s";
}

std::string example_duration(const Field & /*field*/) {
  return "1h30m";
}

uint32_t duration_in(std::string_view text, uint32_t max) {
  uint64_t seconds = 0;
  for (std::string_view rest = text; !rest.empty();) {
    size_t letter = rest.find_first_of("dhms");
    size_t end = std::min(letter, rest.size());
    uint32_t count = parse_number(rest.substr(0, end), max);
    uint32_t unit = 1;
    for (const TimeUnit &known : kTimeUnits) {
      if (end < rest.size() && rest[end] == known.letter) unit = known.seconds;
    }
    seconds += uint64_t{count} * unit;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (text.empty() || seconds > max) throw BadValue("'{}' given", printable(text));
  return static_cast<uint32_t>(seconds);
}

Bytes parse_duration(const Field &field, std::string_view text) {
  return bytes_of(duration_in(text, largest(field)), field.width);
}

std::string text_of_duration(const Field & /*field*/, ByteView bytes) {
  uint32_t rest = number_of(bytes);
  std::string text;
  for (const TimeUnit &unit : kTimeUnits) {
    if (rest >= unit.seconds) text += fmt::format("{}{}", rest / unit.seconds, unit.letter);
    rest %= unit.seconds;
  }
  return text.empty() ? "0s" : text;
}

ordered_json json_of_duration(const Field & /*field*/, ByteView bytes) {
  return number_of(bytes);
}

// Lists of numbers, in which "5-8" is a range.

std::string ranges_text(const Numbers &numbers) {
  std::string text;
  for (size_t first = 0; first < numbers.size();) {
    size_t last = first;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    if (last < first + 2) last = first;
    text += fmt::format("{}{}", text.empty() ? "" : ",", numbers[first]);
    if (last > first) text += fmt::format("-{}", numbers[last]);
    first = last + 1;
  }
  return text.empty() ? "none" : text;
}

Numbers parse_ranges(std::string_view text, uint32_t max) {
  Numbers numbers;
  for (const Item &item : split_items(text == "none" ? "" : text, ',')) {
    std::string_view range = item.text;
    size_t dash = range.find('-');
    uint32_t first = parse_number(range.substr(0, dash), max);
    uint32_t last =
        dash == std::string_view::npos ? first : parse_number(range.substr(dash + 1), max);
    if (last < first) throw BadValue("'{}' ends before it begins", printable(range));
    for (uint64_t number = first; number <= last; ++number) {
      numbers.push_back(static_cast<uint32_t>(number));
    }
  }
  return numbers;
}

// Ports.

std::string expected_ports(const Field &field) {
  return fmt::format("ports from 1 to {} as 1,2,5-8, or none", 8 * field.width);
}

std::string described_ports(const Field & /*field*/) {
  return "ports as 1,2,5-8";
}

std::string example_ports(const Field & /*field*/) {
  return "1,2";
}

Bytes parse_ports(const Field &field, std::string_view text) {
  uint32_t bits = 0;
  for (uint32_t port : parse_ranges(text, 8 * field.width)) {
    if (port == 0) throw BadValue("'{}' given", printable(text));
    bits |= uint32_t{1} << (port - 1);
  }
  return bytes_of(bits, field.width);
}

Numbers ports_in(ByteView bytes) {
  Numbers ports;
  for (uint32_t bits = number_of(bytes), port = 1; bits != 0; bits >>= 1, ++port) {
    if ((bits & 1) != 0) ports.push_back(port);
  }
  return ports;
}

std::string text_of_ports(const Field & /*field*/, ByteView bytes) {
  return ranges_text(ports_in(bytes));
}

ordered_json json_of_ports(const Field & /*field*/, ByteView bytes) {
  return ports_in(bytes);
}

// Words.

std::string expected_numbers(const Field &field) {
  return fmt::format("up to {} numbers as 10,20{}", field.width / kWord,
                     field.unit == nullptr ? "" : fmt::format(" in {}", field.unit));
}

std::string described_numbers(const Field &field) {
  return fmt::format("{} numbers{}", field.width / kWord,
                     field.unit == nullptr ? "" : fmt::format(" in {}", field.unit));
}

std::string example_numbers(const Field & /*field*/) {
  return "1,1";
}

Bytes parse_numbers_field(const Field &field, std::string_view text) {
  Numbers numbers = parse_numbers(without_unit(field, text), ',');
  if (numbers.size() > field.width / kWord) throw BadValue("{} numbers given", numbers.size());
  return bytes_of(numbers, kWord, field.width);
}

std::string text_of_numbers(const Field &field, ByteView bytes) {
  return with_unit(field, fmt::format("{}", fmt::join(numbers_of(bytes, kWord), ",")));
}

ordered_json json_of_numbers(const Field & /*field*/, ByteView bytes) {
  return numbers_of(bytes, kWord);
}

bool fits_numbers(std::string_view text) {
  return text.find(',') != std::string_view::npos && text.find(':') == std::string_view::npos;
}

// VLAN ids.

constexpr size_t kVlanWidth = sizeof(uint16_t);

std::string expected_vlans(const Field &field) {
  return fmt::format("up to {} VLAN ids as 10,20-25, or none", field.width / kVlanWidth);
}

std::string described_vlans(const Field & /*field*/) {
  return "VLAN ids as 10,20-25";
}

std::string example_vlans(const Field & /*field*/) {
  return "10,20-25";
}

Bytes parse_vlans(const Field &field, std::string_view text) {
  // Two bytes in hex may be a decimal number.
  std::optional<Bytes> bytes = hex_of(field, text);
  if (bytes && field.width > kVlanWidth) return *bytes;
  Numbers ids = parse_ranges(text, UINT16_MAX);
  if (ids.size() > field.width / kVlanWidth) throw BadValue("{} VLAN ids given", ids.size());
  return bytes_of(ids, kVlanWidth, field.width);
}

/// All up to the last that is not 0.
Numbers vlans_in(ByteView bytes) {
  Numbers ids = numbers_of(bytes, kVlanWidth);
  while (!ids.empty() && ids.back() == 0) ids.pop_back();
  return ids;
}

std::string text_of_vlans(const Field & /*field*/, ByteView bytes) {
  return ranges_text(vlans_in(bytes));
}

ordered_json json_of_vlans(const Field & /*field*/, ByteView bytes) {
  return vlans_in(bytes);
}

// Addresses.

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

Bytes parse_mac(const Field &field, std::string_view text) {
  if (std::optional<Bytes> bytes = hex_of(field, text)) return *bytes;
  std::optional<Mac> mac = to_mac(text);
  if (!mac) throw BadValue("'{}' is not a MAC address", printable(text));
  return {mac->begin(), mac->end()};
}

std::string text_of_mac(const Field & /*field*/, ByteView bytes) {
  return mac_text(bytes.first<sizeof(Mac)>());
}

bool fits_mac(std::string_view text) {
  return to_mac(text).has_value();
}

std::string expected_ipv4(const Field & /*field*/) {
  return "an address as 192.0.2.1";
}

std::string described_ipv4(const Field & /*field*/) {
  return "an IPv4 address";
}

std::string example_ipv4(const Field & /*field*/) {
  return "192.0.2.1";
}

// Bytes with points between them.

Bytes parse_dotted(const Field &field, std::string_view text) {
  // A byte in hex may be a decimal number.
  std::optional<Bytes> bytes = hex_of(field, text);
  if (bytes && field.width > 1) return *bytes;
  Numbers numbers;
  for (const Item &item : split_items(text, '.')) {
    numbers.push_back(parse_number(item.text, UINT8_MAX));
  }
  if (numbers.size() != field.width) throw BadValue("'{}' given", printable(text));
  return bytes_of(numbers, 1, field.width);
}

std::string text_of_dotted(const Field & /*field*/, ByteView bytes) {
  return fmt::format("{}", fmt::join(bytes, "."));
}

std::string expected_version(const Field &field) {
  std::vector<size_t> numbers;
  while (numbers.size() < field.width) numbers.push_back(numbers.size() + 1);
  return fmt::format("a version as {}", fmt::join(numbers, "."));
}

std::string described_version(const Field & /*field*/) {
  return "a version";
}

std::string example_version(const Field &field) {
  return text_of_dotted(field, Bytes(field.width, 1));
}

// Interfaces and ONTs.

std::string expected_interface(const Field & /*field*/) {
  return "an interface as 1/2";
}

std::string described_interface(const Field & /*field*/) {
  return "an interface";
}

std::string example_interface(const Field & /*field*/) {
  return "1/2";
}

/// "1/2", or the plain numbers "1,2".
Numbers parse_words(std::string_view text) {
  return parse_numbers(text, text.find('/') == std::string_view::npos ? ',' : '/');
}

Bytes parse_interface(const Field &field, std::string_view text) {
  Numbers numbers = parse_words(text);
  if (numbers.size() != field.width / kWord) throw BadValue("'{}' given", printable(text));
  return bytes_of(numbers, kWord, field.width);
}

std::string text_of_interface(const Field & /*field*/, ByteView bytes) {
  return fmt::format("{}", fmt::join(numbers_of(bytes, kWord), "/"));
}

bool has_port(const Field &field) {
  return field.width >= kPortEnd;
}

std::string expected_ont(const Field &field) {
  return has_port(field) ? "an ONT as 1/2/3, its UNI port as 1/2/3:4" : "an ONT as 1/2/3";
}

std::string described_ont(const Field & /*field*/) {
  return "an ONT";
}

std::string example_ont(const Field & /*field*/) {
  return "1/2/3";
}

Bytes parse_ont(const Field &field, std::string_view text) {
  size_t colon = text.find(':');
  Numbers target = parse_words(text.substr(0, colon));
  if (target.size() != kNameWords) throw BadValue("'{}' given", printable(text));
  if (has_port(field)) target.push_back(box::kThisRow);
  if (colon != std::string_view::npos) {
    if (!has_port(field)) throw BadValue("a UNI port is not taken here");
    target.push_back(parse_number(text.substr(colon + 1), UINT32_MAX));
  }
  return bytes_of(target, kWord, field.width);
}

std::string text_of_ont(const Field &field, ByteView bytes) {
  Numbers words = numbers_of(bytes, kWord);
  std::string text = fmt::format("{}/{}/{}", words[0], words[1], words[2]);
  if (has_port(field) && words[4] != 0) text += fmt::format(":{}", words[4]);
  return text;
}

bool fits_ont(std::string_view text) {
  return text.find('/') != std::string_view::npos;
}

// Records: "{kind=uni-port number=1 value=0} {...}".

std::string expected_records(const Field &field) {
  std::string fields;
  for (const Field &inner : field.record) fields += fmt::format(" {}=", inner.name);
  return fmt::format("records as {{{}}} {{...}}, or none", fields.substr(1));
}

std::string described_records(const Field & /*field*/) {
  return "records";
}

const Field &inner_field(const Field &field, std::string_view name) {
  for (const Field &inner : field.record) {
    if (inner.name == name) return inner;
  }
  throw BadValue("there is no field '{}'", printable(name));
}

Bytes parse_record(const Field &field, std::string_view text) {
  Bytes record(field.record_size);
  for (const std::string &word : split_words(text)) {
    size_t equals = word.find('=');
    // The word may be a part of a password and is not shown.
    if (equals == std::string::npos) throw BadValue("a word is not FIELD=VALUE");
    const Field &inner = inner_field(field, std::string_view(word).substr(0, equals));
    Bytes bytes = parse_field(inner, std::string_view(word).substr(equals + 1));
    std::copy(bytes.begin(), bytes.end(), record.data() + inner.offset);
  }
  return record;
}

/// Where a record's text ends: at the brace that is not within quotation marks.
size_t end_of_record(std::string_view text) {
  char quote = '\0';
  for (size_t at = 0; at < text.size(); ++at) {
    char character = text[at];
    if (character == '\\' && quote != '\'') {
      ++at;
    } else if (quote != '\0') {
      if (character == quote) quote = '\0';
    } else if (character == '}') {
      return at;
    } else if (character == '\'' || character == '"') {
      quote = character;
    }
  }
  return std::string_view::npos;
}

/// As many bytes as the field is wide; those that are not given are zeros.
Bytes filled(const Field &field, Bytes records) {
  if (field.width == Field::kToTheEnd) return records;
  if (records.size() > field.width) throw BadValue("{} given", counted(records.size(), "byte"));
  records.resize(field.width);
  return records;
}

Bytes parse_records(const Field &field, std::string_view text) {
  Bytes records;
  for (std::string_view rest = text == "none" ? "" : text; !rest.empty();) {
    bool is_record = rest.starts_with('{');
    size_t end = is_record ? end_of_record(rest) : std::min(rest.find(' '), rest.size());
    if (end == std::string_view::npos) throw BadValue("'{}' given", printable(rest));
    Bytes bytes =
        is_record ? parse_record(field, rest.substr(1, end - 1)) : parse_hex(rest.substr(0, end));
    records.insert(records.end(), bytes.begin(), bytes.end());
    rest.remove_prefix(std::min(end + (is_record ? 2 : 1), rest.size()));
  }
  return filled(field, std::move(records));
}

/// @return the bytes after the last whole record
template <typename Take>
ByteView each_record(const Field &field, ByteView bytes, Take take) {
  for (; bytes.size() >= field.record_size; bytes = bytes.subspan(field.record_size)) {
    take(bytes.first(field.record_size));
  }
  return bytes;
}

ByteView bytes_of_field(const Field &field, ByteView record) {
  return record.subspan(field.offset, field.width);
}

std::string text_of_records(const Field &field, ByteView bytes) {
  std::vector<std::string> records;
  ByteView rest = each_record(field, bytes, [&](ByteView record) {
    std::vector<std::string> words;
    for (const Field &inner : field.record) {
      if (field.brief && !inner.has_content()) continue;
      ByteView value = bytes_of_field(inner, record);
      words.push_back(fmt::format("{}={}", inner.name,
                                  inner.kind == FieldKind::kBytes
                                      ? to_hex(value)
                                      : form_of(inner.kind).text(inner, value)));
    }
    records.push_back(fmt::format("{{{}}}", join_words(words)));
  });
  if (!rest.empty()) records.push_back(to_hex(rest));
  return records.empty() ? "none" : fmt::format("{}", fmt::join(records, " "));
}

ordered_json json_of_records(const Field &field, ByteView bytes) {
  ordered_json records = ordered_json::array();
  ByteView rest = each_record(field, bytes, [&](ByteView record) {
    ordered_json object = ordered_json::object();
    for (const Field &inner : field.record) {
      if (field.brief && !inner.has_content()) continue;
      object[inner.name] = form_of(inner.kind).json(inner, bytes_of_field(inner, record));
    }
    records.push_back(std::move(object));
  });
  if (!rest.empty()) records.push_back(to_hex(rest));
  return records;
}

// Bytes.

std::string expected_bytes(const Field &field) {
  return counted(field.width, "byte") + " as HEX";
}

std::string described_bytes(const Field &field) {
  return counted(field.width, "byte");
}

std::string example_bytes(const Field &field) {
  return field.width > kWord ? "0:01,4:01" : "0:01";
}

Bytes parse_bytes(const Field &field, std::string_view text) {
  Bytes bytes = parse_hex(text);
  return field.width == Field::kToTheEnd ? bytes : of_size(field.width, std::move(bytes));
}

std::string text_of_bytes(const Field & /*field*/, ByteView bytes) {
  return to_spaced_hex(bytes);
}

ordered_json json_of_bytes(const Field & /*field*/, ByteView bytes) {
  return to_hex(bytes);
}

bool fits_no_form(std::string_view /*text*/) {
  return false;
}

/// The JSON form of kinds whose text is all that they hold.
template <std::string (*text)(const Field &, ByteView)>
ordered_json json_of(const Field &field, ByteView bytes) {
  return text(field, bytes);
}

constexpr FieldForm kForms[] = {
    {FieldKind::kText, "text", "string", expected_text, described_text, example_text, parse_text,
     text_of_text, json_of_text, nullptr},
    {FieldKind::kPadded, "padded", "string", expected_text, described_text, example_text,
     parse_text, text_of_text, json_of_text, nullptr},
    {FieldKind::kListing, "listing", "string", expected_text, described_listing, example_text,
     parse_text, text_of_text, json_of_text, nullptr},
    {FieldKind::kNumber, "number", "number", expected_number, described_number, example_number,
     parse_number_field, text_of_number, json_of_number, nullptr},
    {FieldKind::kVlan, "vlan", "number", expected_vlan, described_vlan, example_number,
     parse_number_field, text_of_number, json_of_number, nullptr},
    {FieldKind::kSigned, "signed", "number", expected_signed, described_number, example_signed,
     parse_signed, text_of_signed, json_of_signed, nullptr},
    {FieldKind::kFlags, "flags", "array", expected_flags, described_flags, example_flags,
     parse_flags, text_of_flags, json_of_flags, nullptr},
    {FieldKind::kDuration, "duration", "number", expected_duration, described_duration,
     example_duration, parse_duration, text_of_duration, json_of_duration, nullptr},
    {FieldKind::kPorts, "ports", "array", expected_ports, described_ports, example_ports,
     parse_ports, text_of_ports, json_of_ports, nullptr},
    {FieldKind::kNumbers, "numbers", "array", expected_numbers, described_numbers, example_numbers,
     parse_numbers_field, text_of_numbers, json_of_numbers, fits_numbers},
    {FieldKind::kVlans, "vlans", "array", expected_vlans, described_vlans, example_vlans,
     parse_vlans, text_of_vlans, json_of_vlans, nullptr},
    {FieldKind::kMac, "mac", "string", expected_mac, described_mac, example_mac, parse_mac,
     text_of_mac, json_of<text_of_mac>, fits_mac},
    {FieldKind::kIpv4, "ipv4", "string", expected_ipv4, described_ipv4, example_ipv4, parse_dotted,
     text_of_dotted, json_of<text_of_dotted>, nullptr},
    {FieldKind::kInterface, "interface", "string", expected_interface, described_interface,
     example_interface, parse_interface, text_of_interface, json_of<text_of_interface>, nullptr},
    {FieldKind::kOnt, "ont", "string", expected_ont, described_ont, example_ont, parse_ont,
     text_of_ont, json_of<text_of_ont>, fits_ont},
    {FieldKind::kVersion, "version", "string", expected_version, described_version, example_version,
     parse_dotted, text_of_dotted, json_of<text_of_dotted>, nullptr},
    {FieldKind::kRecords, "records", "array", expected_records, described_records, nothing,
     parse_records, text_of_records, json_of_records, nullptr},
    {FieldKind::kBytes, "bytes", "string", expected_bytes, described_bytes, example_bytes,
     parse_bytes, text_of_bytes, json_of_bytes, fits_no_form},
};

constexpr bool is_in_order() {
  for (size_t i = 0; i < std::size(kForms); ++i) {
    if (kForms[i].kind != static_cast<FieldKind>(i)) return false;
  }
  return true;
}
static_assert(is_in_order());

// JSON.

bool is_text(FieldKind kind) {
  return kind == FieldKind::kText || kind == FieldKind::kPadded || kind == FieldKind::kListing;
}

/// The text that has the same meaning as a list of numbers and names.
std::string list_text(const ordered_json &list) {
  std::vector<std::string> items;
  for (const ordered_json &item : list) items.push_back(text_of_json(item));
  return items.empty() ? "none" : fmt::format("{}", fmt::join(items, ","));
}

Bytes record_of_json(const Field &field, const ordered_json &object) {
  Bytes record(field.record_size);
  for (const auto &[name, value] : object.items()) {
    const Field &inner = inner_field(field, name);
    Bytes bytes = parse_json(inner, value);
    std::copy(bytes.begin(), bytes.end(), record.data() + inner.offset);
  }
  return record;
}

Bytes records_of_json(const Field &field, const ordered_json &list) {
  Bytes records;
  for (const ordered_json &item : list) {
    Bytes bytes = item.is_object() ? record_of_json(field, item) : parse_hex(text_of_json(item));
    records.insert(records.end(), bytes.begin(), bytes.end());
  }
  return filled(field, std::move(records));
}

/// A list or a text in JSON; nothing when the text is anything else. Texts are no lists.
std::optional<ordered_json> json_in(const Field &field, std::string_view text) {
  bool may_be = text.starts_with('"') || (text.starts_with('[') && !is_text(field.kind));
  if (!may_be) return std::nullopt;
  ordered_json json = ordered_json::parse(text, nullptr, false);
  return json.is_discarded() ? std::nullopt : std::optional(std::move(json));
}

}  // namespace

std::span<const FieldForm> field_forms() {
  return kForms;
}

const FieldForm &form_of(FieldKind kind) {
  return kForms[static_cast<size_t>(kind)];
}

Bytes parse_field(const Field &field, std::string_view text) {
  std::optional<ordered_json> json = json_in(field, text);
  return json ? parse_json(field, *json) : form_of(field.kind).parse(field, text);
}

Bytes parse_json(const Field &field, const ordered_json &json) {
  if (field.kind == FieldKind::kRecords && json.is_array()) return records_of_json(field, json);
  std::string text = json.is_array() ? list_text(json) : text_of_json(json);
  return form_of(field.kind).parse(field, is_text(field.kind) ? doubled_backslashes(text) : text);
}

Field without_meaning(Field field) {
  field.values = {};
  field.unit = nullptr;
  field.decimals = 0;
  switch (field.kind) {
    case FieldKind::kVlan:
    case FieldKind::kSigned:
    case FieldKind::kFlags:
    case FieldKind::kDuration:
    case FieldKind::kPorts:
      field.kind = FieldKind::kNumber;
      break;
    case FieldKind::kInterface:
    case FieldKind::kOnt:
      field.kind = FieldKind::kNumbers;
      break;
    case FieldKind::kVlans:
    case FieldKind::kIpv4:
    case FieldKind::kVersion:
    case FieldKind::kRecords:
      field.kind = FieldKind::kBytes;
      break;
    default:
      break;
  }
  return field;
}

Bytes parse_hex(std::string_view text) {
  std::optional<Bytes> bytes = from_hex(text);
  if (!bytes) bytes = from_hex_dump(text);
  if (!bytes) throw BadValue("'{}' is not pairs of hex digits", printable(text));
  return *bytes;
}

uint32_t parse_number(std::string_view text, uint32_t max) {
  std::optional<uint32_t> number = number_in(text, max);
  if (number) return *number;
  bool is_number = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
  throw BadValue("'{}' {}", printable(text), is_number ? "is too large" : "given");
}

Bytes of_size(size_t size, Bytes bytes) {
  if (bytes.size() != size) throw BadValue("{} given", counted(bytes.size(), "byte"));
  return bytes;
}

}  // namespace olt::cli
