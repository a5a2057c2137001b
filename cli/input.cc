#include "cli/input.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "base/mac.h"
#include "base/text.h"
#include "cli/error.h"
#include "cli/expectations.h"
#include "cli/file.h"
#include "cli/list_text.h"
#include "cli/number_text.h"
#include "cli/secret.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Form;
using catalog::Kind;

namespace {

constexpr uint32_t kLongestStream = OLT_REQUEST_LIMIT;
constexpr size_t kWord = sizeof(uint32_t);
constexpr size_t kTargetWords = 3;

class Input {
 public:
  Input(Call &call, const Assignment &assignment)
      : call_(call),
        argument_(call.operation().arguments()[assignment.place]),
        assignment_(assignment),
        name_(assignment.field != nullptr ? assignment.field->name : argument_.name) {}

  void read() {
    bool asks = assignment_.is_secret(call_.operation()) && assignment_.value == "-";
    std::string secret = asks ? read_secret(name_) : std::string();
    std::string_view value = asks ? secret : assignment_.value;
    if (assignment_.field != nullptr) {
      read_field(*assignment_.field, value);
    } else {
      read_argument(value);
    }
  }

 private:
  template <typename... Args>
  [[noreturn]] void refuse(fmt::format_string<Args...> given, Args &&...args) const {
    wrong_usage("{}: {}: {}; expected {}", call_.operation().name, name_,
                fmt::format(given, std::forward<Args>(args)...),
                assignment_.field != nullptr ? expected(*assignment_.field) : expected(argument_));
  }

  void read_argument(std::string_view value) {
    size_t place = assignment_.place;
    switch (argument_.kind) {
      case Kind::kWord:
        call_.set_word(place, number(value, argument_.most));
        break;
      case Kind::kText:
        call_.set_text(place, bounded(value, argument_.most));
        break;
      case Kind::kStream:
        call_.set_stream(place, value.starts_with('@') ? file(value.substr(1)) : hex(value));
        break;
      case Kind::kRecord:
        read_record(value);
        break;
      case Kind::kVlans:
      case Kind::kIds:
      case Kind::kEntries:
        read_list(value);
        break;
      case Kind::kBuffer:
        if (value.size() < 2 || value[0] != '@') refuse("'{}' given", printable(value));
        call_.set_file(place, std::string(value.substr(1)));
        break;
      case Kind::kName:
      case Kind::kBlock:
      case Kind::kHeadedBlock:
      case Kind::kReplyBlock:
        break;
    }
  }

  void read_list(std::string_view value) {
    try {
      read_items(items(value));
    } catch (const BadItem &bad) {
      refuse("{}", bad.what());
    }
  }

  std::vector<Item> items(std::string_view value) const {
    if (!value.starts_with('@')) {
      return split_items(value, argument_.kind == Kind::kEntries ? ';' : ',');
    }
    Bytes content = file(value.substr(1));
    return split_lines({reinterpret_cast<const char *>(content.data()), content.size()});
  }

  void read_items(const std::vector<Item> &items) {
    size_t place = assignment_.place;
    if (argument_.kind == Kind::kEntries) {
      call_.set_stream(place, read_entries(items, argument_));
    } else if (argument_.kind == Kind::kIds) {
      std::vector<uint16_t> ids = read_vlan_ids(items);
      Bytes bytes(ids.size() * sizeof(uint16_t));
      if (!ids.empty()) std::memcpy(bytes.data(), ids.data(), bytes.size());
      call_.set_stream(place, std::move(bytes));
    } else {
      call_.set_vlans(place, read_vlans(items, described_bytes(argument_)));
    }
  }

  void read_record(std::string_view value) {
    if (value.starts_with('@')) {
      put(0, exactly(argument_.size, file(value.substr(1))));
    } else if (argument_.form == Form::kOnt && value.find('/') != std::string_view::npos) {
      read_ont(value);
    } else if (argument_.form == Form::kMac && to_mac(value)) {
      put(0, *to_mac(value));
    } else if (argument_.form == Form::kWords && is_number_list(value)) {
      put_numbers(0, numbers(value, ',', argument_.size / kWord));
    } else if (value.find(':') == std::string_view::npos) {
      put(0, exactly(argument_.size, hex(value)));
    } else {
      read_patches(value);
    }
  }

  static bool is_number_list(std::string_view value) {
    return value.find(',') != std::string_view::npos && value.find(':') == std::string_view::npos;
  }

  void read_ont(std::string_view value) {
    size_t colon = value.find(':');
    std::vector<uint32_t> target = numbers(value.substr(0, colon), '/', kTargetWords);
    if (target.size() != kTargetWords) refuse("'{}' given", printable(value));
    if (argument_.size > kTargetWords * kWord) target.push_back(1);  // the kind of target
    if (colon != std::string_view::npos) {
      if (argument_.size == kTargetWords * kWord) refuse("a UNI port is not taken here");
      target.push_back(number(value.substr(colon + 1), UINT32_MAX));
    }
    put_numbers(0, target);
  }

  std::vector<uint32_t> numbers(std::string_view value, char separator, size_t most) const {
    std::vector<uint32_t> found;
    for (const Item &item : split_items(value, separator)) {
      found.push_back(number(item.text, UINT32_MAX));
    }
    if (found.size() > most) refuse("{} numbers given", found.size());
    return found;
  }

  void put_numbers(size_t offset, const std::vector<uint32_t> &words) {
    Bytes bytes(words.size() * kWord);
    if (!words.empty()) std::memcpy(bytes.data(), words.data(), bytes.size());
    put(offset, bytes);
  }

  void read_patches(std::string_view value) {
    while (!value.empty()) {
      std::string_view patch = value.substr(0, value.find(','));
      value.remove_prefix(std::min(patch.size() + 1, value.size()));
      size_t colon = patch.find(':');
      if (colon == std::string_view::npos) refuse("'{}' has no offset", printable(patch));
      uint32_t offset = number(patch.substr(0, colon), UINT32_MAX);
      Bytes bytes = hex(patch.substr(colon + 1));
      if (offset > argument_.size || bytes.size() > argument_.size - offset) {
        refuse("{} bytes at offset {} reach beyond the record", bytes.size(), offset);
      }
      put(offset, bytes);
    }
  }

  void read_field(const Field &field, std::string_view value) {
    switch (field.kind) {
      case FieldKind::kWord: {
        uint32_t word = number(value, UINT32_MAX);
        put_number(field, &word);
        break;
      }
      case FieldKind::kHalfWord: {
        auto half_word = static_cast<uint16_t>(number(value, UINT16_MAX));
        put_number(field, &half_word);
        break;
      }
      case FieldKind::kWords:
        put(field.offset, Bytes(field.width));
        put_numbers(field.offset, numbers(value, ',', field.width / kWord));
        break;
      case FieldKind::kMac:
        if (auto mac = to_mac(value)) {
          put(field.offset, *mac);
        } else {
          put(field.offset, exactly(field.width, hex(value)));
        }
        break;
      case FieldKind::kText:
      case FieldKind::kPadded: {
        std::string_view text = bounded(value, longest_text(field));
        Bytes bytes(text.begin(), text.end());
        bytes.resize(field.width);
        put(field.offset, bytes);
        break;
      }
      case FieldKind::kBytes:
        put(field.offset, exactly(field.width, hex(value)));
        break;
    }
  }

  uint32_t number(std::string_view value, uint32_t most) const {
    std::optional<uint32_t> parsed = number_in(value, most);
    if (!parsed) refuse("'{}' given", printable(value));
    return *parsed;
  }

  std::string_view bounded(std::string_view text, uint32_t longest) const {
    if (text.size() > longest) refuse("{} bytes given", text.size());
    return text;
  }

  Bytes exactly(size_t size, Bytes bytes) const {
    if (bytes.size() != size) refuse("{} bytes given", bytes.size());
    return bytes;
  }

  Bytes hex(std::string_view value) const {
    std::optional<Bytes> bytes = from_hex(value);
    if (!bytes) refuse("'{}' is not pairs of hex digits", printable(value));
    return *bytes;
  }

  Bytes file(std::string_view path) const {
    std::error_code error;
    std::string content = read_file(std::string(path), kLongestStream, error);
    if (error) refuse("cannot read '{}': {}", printable(path), error.message());
    return {content.begin(), content.end()};
  }

  void put(size_t offset, ByteView bytes) { call_.set_bytes(assignment_.place, offset, bytes); }

  /// Words travel in the byte order of every machine that the library runs on.
  void put_number(const Field &field, const void *number) {
    const auto *bytes = static_cast<const uint8_t *>(number);
    call_.set_bytes(assignment_.place, field.offset, {bytes, field.width});
  }

  Call &call_;
  const Argument &argument_;
  const Assignment &assignment_;
  const char *name_;
};

}  // namespace

void read_input(Call &call, const Assignment &assignment) {
  Input(call, assignment).read();
}

}  // namespace olt::cli
