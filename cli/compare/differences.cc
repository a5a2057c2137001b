#include "cli/compare/differences.h"

#include <fmt/format.h>
#include <fnmatch.h>

#include <algorithm>
#include <utility>

#include "catalog/catalog.h"
#include "catalog/message_fields.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::MessageField;
using catalog::Operation;

namespace {

constexpr const char *kNothing = "none";
constexpr const char *kEmptyText = "''";

bool fits(const std::string &pattern, const std::string &name) {
  return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

/// The field by its name, and one in a list by its own name alone, too.
bool names_field(const std::string &pattern, const std::string &field) {
  return fits(pattern, field) || fits(pattern, field.substr(field.rfind('.') + 1));
}

bool covers(const std::string &pattern, std::string_view operation, const std::string &field) {
  return names_field(pattern, field) || fits(pattern, fmt::format("{}.{}", operation, field));
}

/// All that may differ in answers to an operation.
std::vector<std::string> compared_fields(const Operation &operation) {
  std::vector<std::string> names = {kTransport, kStatus, kReply, kReplyLength};
  for (const MessageField &placed : fields_of(operation, operation.reply)) {
    names.emplace_back(placed.field.name);
    for (const Field &inner : placed.field.record)
      names.push_back(fmt::format("{}.{}", placed.field.name, inner.name));
  }
  return names;
}

bool covers_any(const std::string &pattern, const Operation &operation) {
  std::vector<std::string> names = compared_fields(operation);
  return std::any_of(names.begin(), names.end(), [&](const std::string &name) {
    return covers(pattern, operation.name, name);
  });
}

bool ends_with_zero(FieldKind kind) {
  return kind == FieldKind::kText || kind == FieldKind::kPadded;
}

/// As many of a field's bytes as there are.
ByteView bytes_at(const Field &field, ByteView record) {
  size_t begin = std::min<size_t>(field.offset, record.size());
  size_t rest = record.size() - begin;
  return record.subspan(
      begin, field.width == Field::kToTheEnd ? rest : std::min<size_t>(field.width, rest));
}

std::string transport_text(int32_t result) {
  return result == OLT_TRANSPORT_OK ? "answered" : olt_transport_text(result);
}

/// Finds what differs in a reply.
class Replies {
 public:
  Replies(ByteView recorded, ByteView now, const Detail &detail)
      : recorded_(recorded), now_(now), detail_(detail) {}

  void compare(const Operation &operation) {
    for (const MessageField &placed : fields_of(operation, operation.reply)) {
      compare_field(placed.field, recorded_, now_, {placed.field.name, 0});
      bool is_last = placed.field.width == Field::kToTheEnd;
      end_ = is_last ? SIZE_MAX : std::max<size_t>(end_, placed.field.offset + placed.field.width);
    }
  }

  /// What no field has.
  void compare_rest() {
    if (end_ >= std::max(recorded_.size(), now_.size())) return;
    Field rest = {.name = kReply,
                  .offset = static_cast<uint32_t>(end_),
                  .width = Field::kToTheEnd,
                  .kind = FieldKind::kBytes};
    compare_field(rest, recorded_, now_, {kReply, 0});
  }

  std::vector<FieldDifference> take() { return std::move(differences_); }

 private:
  struct Place {
    std::string field;
    size_t item;
  };

  void compare_field(const Field &field, ByteView recorded, ByteView now, const Place &place) {
    ByteView before = bytes_at(field, recorded);
    ByteView after = bytes_at(field, now);
    if (std::equal(before.begin(), before.end(), after.begin(), after.end())) return;
    bool is_text = ends_with_zero(field.kind) && before.size() == after.size();
    if (is_text && text_in(before) == text_in(after)) return;
    bool is_listing = field.kind == FieldKind::kListing;
    if (is_listing && text_in(before).empty() == text_in(after).empty()) return;
    if (!field.record.empty() && field.record_size > 0)
      return compare_items(field, before, after, place);
    add(field, before, after, place);
  }

  void compare_items(const Field &field, ByteView before, ByteView after, const Place &place) {
    size_t size = field.record_size;
    auto item_at = [size](ByteView bytes, size_t begin) {
      return bytes.subspan(std::min(begin, bytes.size()),
                           std::min(size, bytes.size() - std::min(begin, bytes.size())));
    };
    Field item = field;
    item.offset = 0;
    item.width = field.record_size;
    for (size_t begin = 0; begin < std::max(before.size(), after.size()); begin += size) {
      ByteView one = item_at(before, begin);
      ByteView other = item_at(after, begin);
      size_t number = begin / size + 1;
      if (one.empty() || other.empty()) {
        add(item, one, other, {place.field, number});
        continue;
      }
      for (const Field &inner : field.record)
        compare_field(inner, one, other, {fmt::format("{}.{}", place.field, inner.name), number});
    }
  }

  void add(const Field &field, ByteView before, ByteView after, const Place &place) {
    ComparedValue recorded = value_of(field, before);
    ComparedValue now = value_of(field, after);
    if (recorded.text == now.text && !is_masked(field)) {
      recorded = {to_spaced_hex(before), to_hex(before)};
      now = {to_spaced_hex(after), to_hex(after)};
    }
    differences_.push_back({place.field, place.item, std::move(recorded), std::move(now)});
  }

  bool is_masked(const Field &field) const { return field.holds_secret() && !detail_.secrets; }

  ComparedValue value_of(Field field, ByteView bytes) const {
    if (bytes.empty()) return {kNothing, nullptr};
    if (field.width == Field::kToTheEnd) field.width = static_cast<uint32_t>(bytes.size());
    bool is_short = bytes.size() < field.width;
    if (is_short && !is_masked(field)) return {to_spaced_hex(bytes), to_hex(bytes)};
    NamedValue value = {detail_.raw ? without_meaning(field) : field,
                        {bytes.begin(), bytes.end()},
                        is_masked(field)};
    std::string text = value.text();
    return {text.empty() ? kEmptyText : text, value.json()};
  }

  ByteView recorded_;
  ByteView now_;
  const Detail &detail_;
  size_t end_ = 0;  ///< of the bytes that have been compared
  std::vector<FieldDifference> differences_;
};

/// The record, with the present bytes in place of those that were masked.
Bytes unmasked(const capture::Packet &recorded, ByteView now) {
  Bytes record = recorded.record;
  if (!recorded.is_masked) return record;
  for (const catalog::WireSecret &secret : catalog::wire_secrets()) {
    if (secret.message_type != recorded.message_type) continue;
    Hidden hidden = {secret.offset, secret.length, secret.stride};
    for (size_t i = 0; i < std::min(record.size(), now.size()); ++i)
      if (hidden.covers(i) && recorded.record[i] == '*') record[i] = now[i];
  }
  return record;
}

}  // namespace

ComparedValue compared_text(const std::optional<std::string> &text) {
  if (!text) return {kNothing, nullptr};
  return {text->empty() ? kEmptyText : printable(*text), *text};
}

void FieldPatterns::add(const std::string &pattern, const Layout &layout) {
  if (pattern.find(kListingPrefix) != std::string::npos) {
    patterns_.push_back(pattern);
    return;
  }
  for (const catalog::Family &family : layout.families()) {
    for (const Operation &operation : family.operations) {
      if (!operation.address.sends() || !covers_any(pattern, operation)) continue;
      patterns_.push_back(pattern);
      return;
    }
  }
  wrong_usage(
      "compare: --ignore: '{}' stands for no field of a reply; expected FIELD or OPERATION.FIELD, "
      "as in get_rstp_brief.seconds or *.seconds",
      printable(pattern));
}

bool FieldPatterns::cover(std::string_view operation, const std::string &field) const {
  return std::any_of(patterns_.begin(), patterns_.end(),
                     [&](const std::string &pattern) { return covers(pattern, operation, field); });
}

std::optional<Field> listing_field(const Operation &operation) {
  for (const MessageField &placed : fields_of(operation, operation.reply))
    if (placed.field.kind == FieldKind::kListing) return placed.field;
  return std::nullopt;
}

std::vector<FieldDifference> differences_of(const capture::Packet &recorded, const Answer &now,
                                            const Operation *operation, const Layout &layout,
                                            const Detail &detail) {
  auto result = static_cast<int32_t>(recorded.result);
  if (result != now.result) {
    return {{kTransport,
             0,
             {transport_text(result), result},
             {transport_text(now.result), now.result}}};
  }
  auto status = [&layout](uint16_t number) {
    auto found = layout.statuses().find(number);
    std::string text = fmt::to_string(number);
    if (found != layout.statuses().end()) text += fmt::format(" ({})", found->second);
    return ComparedValue{text, number};
  };
  if (recorded.status != now.status)
    return {{kStatus, 0, status(recorded.status), status(now.status)}};
  Bytes before = unmasked(recorded, now.reply);
  ByteView after = now.reply;
  if (recorded.record_length > before.size())
    after = after.first(std::min(before.size(), after.size()));
  Replies replies(before, after, detail);
  if (operation != nullptr) replies.compare(*operation);
  replies.compare_rest();
  std::vector<FieldDifference> differences = replies.take();
  if (differences.empty() && recorded.record_length != now.reply.size()) {
    size_t length = now.reply.size();
    differences.push_back({kReplyLength,
                           0,
                           {fmt::to_string(recorded.record_length), recorded.record_length},
                           {fmt::to_string(length), length}});
  }
  return differences;
}

}  // namespace olt::cli
