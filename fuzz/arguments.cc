// The arguments of every operation that sends: accepted words make a request, refused words one
// line of error. What is written from a value is read as that value again.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/mac.h"
#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/input/argument_parser.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/items.h"
#include "cli/text/list_text.h"
#include "cli/text/number_text.h"
#include "fuzz/platform.h"
#include "fuzz/target.h"
#include "tests/support/folder.h"

namespace {

using olt::Bytes;
using olt::ByteView;
using olt::catalog::Argument;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::Kind;
using olt::catalog::Operation;
using olt::catalog::Origin;
using olt::catalog::Part;
using olt::cli::Call;
using olt::cli::Error;
using olt::fuzz::Input;
using olt::fuzz::Request;
using olt::fuzz::require;
using Words = std::vector<std::string>;

constexpr size_t kMaxWords = 12;
constexpr char kFile[] = "\n# a comment\n10\n20-25\n";

/// A folder with one file, named f; nobody answers when a password is asked for.
const olt::test::Folder &folder() {
  static const olt::test::Folder instance;
  static const bool prepared = [] {
    instance.write("f", kFile);
    return std::freopen("/dev/null", "r", stdin) != nullptr;
  }();
  require(prepared, "there is nothing to read from standard input");
  return instance;
}

/// Confines the files that an input names to that folder.
void keep_to_folder(std::string &word) {
  size_t at = word.find('@');
  if (at == std::string::npos) return;
  std::erase_if(word, [](char c) { return c == '/' || c == '.'; });
  word.insert(word.find('@') + 1, folder() / "");
}

Words words_in(std::string_view text) {
  Words words;
  while (!text.empty() && words.size() < kMaxWords) {
    std::string word(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    // A word of a command line ends with its zero.
    word.resize(std::strlen(word.c_str()));
    keep_to_folder(word);
    words.push_back(std::move(word));
  }
  return words;
}

void require_written_is_read(const Field &field, ByteView bytes) {
  const olt::cli::FieldForm &form = olt::cli::form_of(field.kind);
  std::string text = form.text(field, bytes);
  Bytes again = olt::cli::parse_field(field, text);
  require(form.text(field, again) == text, "a value is read as it is printed", text);
}

/// Values that were taken, and their fields. An ONT is printed by its fields alone.
void require_written_is_read(const Call &call) {
  std::span<const Argument> arguments = call.operation().arguments();
  for (size_t place = 0; place < arguments.size(); ++place) {
    const Argument &argument = arguments[place];
    if (!argument.is_input() || argument.kind != Kind::kValue) continue;
    ByteView bytes = call.bytes(place);
    if (argument.form != FieldKind::kOnt) require_written_is_read(argument.whole(), bytes);
    for (const Field &field : argument.own_fields()) {
      require_written_is_read(field, bytes.subspan(field.offset, field.width));
    }
  }
}

/// Clears the bytes of a request that hold what memory held.
void clear_unset_bytes(const Operation &operation, Bytes &request) {
  for (const Part &part : operation.request.parts()) {
    if (part.origin != Origin::kAny || part.offset >= request.size()) continue;
    std::fill_n(request.data() + part.offset,
                std::min<size_t>(part.width, request.size() - part.offset), 0);
  }
}

/// Reports mode 0 when it cannot read the mode.
bool never_fails(const Operation &operation) {
  return operation.name == std::string_view("get_olt_auth_mode");
}

void require_same_request(const Operation &operation, const Words &words) {
  std::vector<Request> requests[2];
  for (std::vector<Request> &made : requests) {
    Call call(operation);
    olt::cli::read_arguments(call, words);
    olt::fuzz::answer_with(1, {});
    bool succeeds = call.make() == 0;
    require(succeeds == never_fails(operation), "a refused request is a failure");
    made = olt::fuzz::take_requests();
    for (Request &request : made) {
      require(request.type == operation.address.message_type, "an operation sends its type");
      clear_unset_bytes(operation, request.bytes);
    }
  }
  require(requests[0] == requests[1], "the same words make the same request");
}

void try_operation(const Operation &operation, const Words &words) {
  try {
    Call call(operation);
    olt::cli::read_arguments(call, words);
    require_written_is_read(call);
    if (operation.address.sends()) require_same_request(operation, words);
  } catch (const Error &error) {
    olt::fuzz::require_line(error.what());
    require(error.status() == olt::cli::kWrongUsage, "words that are refused are wrong usage",
            error.what());
  }
}

void try_hex(std::string_view text) {
  std::optional<Bytes> bytes = olt::from_hex(text);
  if (!bytes) return;
  require(olt::from_hex(olt::to_hex(*bytes)) == bytes &&
              olt::from_hex(olt::to_spaced_hex(*bytes)) == bytes,
          "bytes are read as they are written", text);
  if (bytes->size() != 6) return;
  auto mac = olt::to_mac(fmt::format("{:02x}", fmt::join(*bytes, ":")));
  require(mac && std::equal(mac->begin(), mac->end(), bytes->begin()),
          "an address is read as it is written", text);
}

std::string written(const olt_vlan_node &node) {
  std::string text = fmt::to_string(node.vlan_first);
  if (node.vlan_second != 0) text += fmt::format("-{}", node.vlan_second);
  return text;
}

void try_vlans(std::string_view text) {
  constexpr size_t kDescription = 32;
  std::vector<olt::cli::Item> items = olt::cli::split_items(text, ',');
  try {
    for (const olt_vlan_node &node : olt::cli::read_vlans(items, kDescription)) {
      require(node.vlan_first >= 1 && node.vlan_first <= 4094 && node.vlan_second <= 4094 &&
                  (node.vlan_second == 0 || node.vlan_second >= node.vlan_first),
              "VLANs are within their limits", text);
      std::vector<olt_vlan_node> again =
          olt::cli::read_vlans(olt::cli::split_items(written(node), ','), 0);
      require(again.size() == 1 && again[0].vlan_first == node.vlan_first &&
                  again[0].vlan_second == node.vlan_second,
              "a VLAN is read as it is written", written(node));
    }
    std::vector<uint16_t> ids = olt::cli::read_vlan_ids(items);
    std::string joined = fmt::format("{}", fmt::join(ids, ","));
    require(olt::cli::read_vlan_ids(olt::cli::split_items(joined, ',')) == ids,
            "VLAN ids are read as they are written", joined);
  } catch (const olt::cli::BadValue &bad) {
    olt::fuzz::require_line(bad.what());
  }
}

void try_number(std::string_view text) {
  std::optional<uint32_t> number = olt::cli::number_in(text, UINT32_MAX);
  if (!number) return;
  require(olt::cli::number_in(fmt::to_string(*number), *number) == number &&
              olt::cli::number_in(fmt::format("{:#x}", *number), *number) == number,
          "a number is read as it is written", text);
  require(*number == 0 || !olt::cli::number_in(text, *number - 1), "a limit is kept", text);
}

const Operation &operation_at(size_t index) {
  static const std::vector<const Operation *> all = [] {
    std::vector<const Operation *> found;
    for (const olt::catalog::Family &family : olt::catalog::families()) {
      for (const Operation &operation : family.operations) found.push_back(&operation);
    }
    require(!found.empty(), "there is a catalog");
    return found;
  }();
  return *all[index % all.size()];
}

}  // namespace

// The first byte is the place of the operation in the catalog; the rest are words, a line each.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input input(data, size);
  const Operation &operation = operation_at(input.u8());
  Words words = words_in(input.text());
  try_operation(operation, words);
  for (const std::string &word : words) {
    std::string_view value = std::string_view(word).substr(word.find('=') + 1);
    try_hex(value);
    try_vlans(value);
    try_number(value);
  }
  return 0;
}
