#include "box/pon/onu_record.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/message/id_set.h"
#include "box/message/message.h"

namespace olt::box {

namespace {

/// Removes a separator and a number (1 or more) from the front of the text; nothing if absent.
std::optional<uint32_t> take_number(std::string_view &text, std::string_view separator) {
  if (!text.starts_with(separator)) return std::nullopt;
  text.remove_prefix(separator.size());
  uint32_t number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number == 0) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return number;
}

std::string words_text(std::span<const uint8_t> record) {
  std::string text;
  for (size_t at = 0; at + 4 <= record.size(); at += 4) {
    text += fmt::format("{}{}", at == 0 ? "" : " ", Request(record).word(at));
  }
  return text;
}

bool holds_counted_vlans(std::span<const uint8_t> record) {
  auto ids = counted_ids(record);
  return record.front() == ids.size() && std::all_of(ids.begin(), ids.end(), [](uint16_t id) {
           return id >= 1 && id <= kLastVlan;
         });
}

std::string counted_ids_text(std::span<const uint8_t> record) {
  std::string text;
  for (uint16_t id : counted_ids(record)) text += fmt::format("{}{}", text.empty() ? "" : ",", id);
  return text;
}

}  // namespace

std::vector<uint16_t> counted_ids(std::span<const uint8_t> record) {
  size_t count = std::min<size_t>(record.front(), (record.size() - 1) / 2);
  std::vector<uint16_t> ids(count);
  for (size_t i = 0; i < count; ++i) ids[i] = Request(record).record<uint16_t>(1 + 2 * i);
  return ids;
}

std::string to_text(const OnuPart &place) {
  std::string onu = fmt::format("{}/{}/{}", kPonSlot, place.interface, place.onu);
  return place.part == 0 ? onu : fmt::format("{}:{}", onu, place.part);
}

std::optional<OnuPart> to_onu_part(std::string_view text) {
  auto slot = take_number(text, "");
  auto interface = take_number(text, "/");
  auto onu = take_number(text, "/");
  if (slot != kPonSlot || !interface || !onu) return std::nullopt;
  if (text.empty()) return OnuPart{*interface, *onu};
  auto part = take_number(text, ":");
  if (!part || !text.empty()) return std::nullopt;
  return OnuPart{*interface, *onu, *part};
}

RecordTable::RecordTable(std::string_view key, std::string_view title, Scope scope, size_t size,
                         Shown shown)
    : key_(key), title_(title), scope_(scope), shown_(shown), zeros_(size) {}

std::span<const uint8_t> RecordTable::at(const OnuPart &place) const {
  auto found = records_.find(place);
  return found == records_.end() ? zeros_ : found->second;
}

void RecordTable::set(const OnuPart &place, std::span<const uint8_t> record) {
  if (std::equal(record.begin(), record.end(), zeros_.begin(), zeros_.end())) {
    records_.erase(place);
  } else {
    // State that is read comes in order.
    records_.try_emplace(records_.end(), place)->second.assign(record.begin(), record.end());
  }
}

RecordTable::KeptOfOnu RecordTable::kept_of(const OnuPart &onu) const {
  return {records_.lower_bound({onu.interface, onu.onu, 0}),
          records_.lower_bound({onu.interface, onu.onu + 1, 0})};
}

void RecordTable::forget(const OnuPart &onu) {
  auto of_onu = kept_of(onu);
  records_.erase(of_onu.begin(), of_onu.end());
}

std::string RecordTable::show(std::span<const uint8_t> record) const {
  if (is_secret()) return "**";
  switch (shown_) {
    case Shown::kWords:
      return words_text(record);
    case Shown::kText:
      return printable(text_in(record));
    case Shown::kCountedIds:
      return counted_ids_text(record);
    case Shown::kBytes:
      break;
  }
  return to_hex(record);
}

void RecordTable::describe(Archive &archive,
                           const std::function<bool(Scope, const OnuPart &)> &valid) {
  if (archive.is_reading()) records_.clear();
  archive.entries(
      key_,
      [&] {
        for (const auto &[place, record] : records_) archive.entry(to_text(place), record);
      },
      [&](std::string_view name, ByteView record) {
        auto part = to_onu_part(name);
        if (!part || !valid(scope_, *part)) throw BadInput("names no part that the box has");
        if (record.size() != size()) {
          throw BadInput(fmt::format("has {} bytes; expected {}", record.size(), size()));
        }
        if (shown_ == Shown::kCountedIds && !holds_counted_vlans(record)) {
          throw BadInput("holds no VLANs; expected their count, then the VLANs");
        }
        set(*part, record);
      });
}

size_t RecordTable::footprint() const {
  return sizeof *this + records_.size() * (sizeof(decltype(records_)::value_type) + size());
}

}  // namespace olt::box
