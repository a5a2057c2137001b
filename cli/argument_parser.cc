#include "cli/argument_parser.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

#include "cli/assignment.h"
#include "cli/describe.h"
#include "cli/error.h"
#include "cli/file.h"
#include "cli/secret.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Kind;
using catalog::Operation;

namespace {

constexpr uint32_t kLongestStream = OLT_REQUEST_LIMIT;

std::optional<uint32_t> number_in(std::string_view text, uint32_t most) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  uint32_t number = 0;
  const char *end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc{} || stop != end || number > most) return std::nullopt;
  return number;
}

/// One input on its way from its word into the call.
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
        call_.set_word(place, number(value, UINT32_MAX));
        break;
      case Kind::kText:
        call_.set_text(place, bounded(value, argument_.longest));
        break;
      case Kind::kStream:
        call_.set_stream(place, value.starts_with('@') ? file(value.substr(1)) : hex(value));
        break;
      case Kind::kRecord:
        read_record(value);
        break;
      case Kind::kName:
      case Kind::kBlock:
        break;
    }
  }

  void read_record(std::string_view value) {
    if (value.starts_with('@')) {
      put(0, exactly(argument_.size, file(value.substr(1))));
    } else if (value.find(':') == std::string_view::npos) {
      put(0, exactly(argument_.size, hex(value)));
    } else {
      read_patches(value);
    }
  }

  void read_patches(std::string_view value) {
    while (!value.empty()) {
      std::string_view patch = value.substr(0, value.find(','));
      value.remove_prefix(std::min(patch.size() + 1, value.size()));
      size_t colon = patch.find(':');
      if (colon == std::string_view::npos) refuse("'{}' has no offset", patch);
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
      case FieldKind::kText: {
        std::string_view text = bounded(value, field.width - 1U);
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
    std::optional<Bytes> bytes = parse_hex(value);
    if (!bytes) refuse("'{}' is not pairs of hex digits", printable(value));
    return *bytes;
  }

  Bytes file(std::string_view path) const {
    std::error_code error;
    std::string content = read_file(std::string(path), kLongestStream, error);
    if (error) refuse("cannot read '{}': {}", path, error.message());
    return {content.begin(), content.end()};
  }

  void put(size_t offset, const Bytes &bytes) { call_.set_bytes(assignment_.place, offset, bytes); }

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

bool is_given(const std::vector<Assignment> &assignments, size_t place) {
  return std::any_of(assignments.begin(), assignments.end(),
                     [place](const Assignment &given) { return given.place == place; });
}

/// Secrets that are left out are asked for; anything else must be there.
void complete(const Operation &operation, std::vector<Assignment> &assignments) {
  for (size_t place = 0; place < operation.argument_count; ++place) {
    const Argument &argument = operation.arguments()[place];
    if (may_be_left_out(argument) || is_given(assignments, place)) continue;
    if (!argument.secret) {
      wrong_usage("{}: {} is missing; expected {}", operation.name, argument.name,
                  expected(argument));
    }
    if (!can_ask()) {
      wrong_usage("{}: {} is missing; expected {}, or '-' to read it from standard input",
                  operation.name, argument.name, expected(argument));
    }
    assignments.push_back({place, nullptr, 0, "-"});
  }
}

}  // namespace

void read_arguments(Call &call, std::span<const std::string> words) {
  std::vector<Assignment> assignments = assign(call.operation(), words);
  complete(call.operation(), assignments);
  // Fields go on top of a record that is given as a whole, in whatever order they were written.
  std::stable_partition(assignments.begin(), assignments.end(),
                        [](const Assignment &assignment) { return assignment.field == nullptr; });
  for (const Assignment &assignment : assignments) Input(call, assignment).read();
}

uint32_t parse_number(const std::string &what, std::string_view text, uint32_t most) {
  std::optional<uint32_t> number = number_in(text, most);
  if (!number) {
    wrong_usage("{}: '{}' given; expected a number from 0 to {}", what, printable(text), most);
  }
  return *number;
}

}  // namespace olt::cli
