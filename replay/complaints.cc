#include "replay/complaints.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <tuple>

#include "catalog/message_fields.h"
#include "catalog/senders.h"
#include "cli/text/field_forms.h"

namespace olt::replay {

using capture::Packet;
using catalog::Field;
using catalog::Layout;
using catalog::Operation;

namespace {

constexpr size_t kMaxComplaints = 1000;
constexpr size_t kMaxValue = 64;

std::vector<const Operation *> known_senders(const Request &request, const Layout &layout) {
  return catalog::senders_of({.module = request.module,
                              .message_type = request.message_type,
                              .bytes = request.bytes,
                              .length = static_cast<uint32_t>(request.bytes.size())},
                             layout);
}

/// A field or a run of bytes that two requests have different values of.
struct Difference {
  std::string sent;
  std::string recorded;
};

/// The bytes of the field in a message; nothing when the message ends before.
std::optional<ByteView> bytes_of(const Field &field, ByteView message) {
  if (field.offset + field.width > message.size()) return std::nullopt;
  return field.width == Field::kToTheEnd ? message.subspan(field.offset)
                                         : message.subspan(field.offset, field.width);
}

std::string value_text(Field field, ByteView bytes) {
  if (field.holds_secret()) return fmt::format("{}=**", field.name);
  field.width = static_cast<uint32_t>(bytes.size());
  std::string value = cli::form_of(field.kind).text(field, bytes);
  if (value.size() > kMaxValue) {
    size_t end = kMaxValue;
    while (continues_character(value[end])) --end;
    value = value.substr(0, end) + "...";
  }
  return fmt::format("{}={}", field.name, value);
}

/// In fields of the operation, and in what no field covers.
std::vector<Difference> differences(const Operation *operation, ByteView sent, ByteView recorded) {
  std::vector<Difference> found;
  if (sent.size() != recorded.size()) {
    found.push_back({counted(sent.size(), "byte"), counted(recorded.size(), "byte")});
  }
  size_t covered = 0;
  if (operation != nullptr) {
    for (const catalog::MessageField &placed : fields_of(*operation, operation->request)) {
      std::optional<ByteView> one = bytes_of(placed.field, sent);
      std::optional<ByteView> other = bytes_of(placed.field, recorded);
      if (!one || !other) continue;
      covered = placed.field.offset + std::max(one->size(), other->size());
      if (std::equal(one->begin(), one->end(), other->begin(), other->end())) continue;
      found.push_back({value_text(placed.field, *one), value_text(placed.field, *other)});
    }
  }
  for (size_t i = covered; i < std::min(sent.size(), recorded.size()); ++i) {
    if (sent[i] == recorded[i]) continue;
    found.push_back(
        {fmt::format("byte {}={:02x}", i, sent[i]), fmt::format("byte {}={:02x}", i, recorded[i])});
  }
  return found;
}

std::vector<Difference> differences(const Index &index, const Request &request,
                                    const Packet &recorded, const Layout &layout) {
  std::vector<const Operation *> operations = known_senders(request, layout);
  const Request other = {recorded.module, recorded.message_type, recorded.record};
  return differences(operations.empty() ? nullptr : operations.front(),
                     index.comparable(request, recorded.is_masked),
                     index.comparable(other, recorded.is_masked));
}

/// "port=9 enable=0"; of many, the first ones.
template <typename Part>
std::string joined(const std::vector<Difference> &all, Part part) {
  constexpr size_t kMaxShown = 8;
  std::string text;
  for (size_t i = 0; i < std::min(all.size(), kMaxShown); ++i)
    text += (text.empty() ? "" : " ") + all[i].*part;
  if (all.size() > kMaxShown) text += fmt::format(" and {} more", all.size() - kMaxShown);
  return text;
}

std::string place_of(const Packet &packet) {
  return fmt::format("exchange {} of process {}", packet.exchange, packet.process);
}

/// "with port=9; expected port=2 as in exchange 7 of process 1234"
std::string compared_text(const Packet &recorded, const std::vector<Difference> &all) {
  return fmt::format("with {}; expected {} as in {}", joined(all, &Difference::sent),
                     joined(all, &Difference::recorded), place_of(recorded));
}

}  // namespace

std::string name_of(const Request &request, const Layout &layout) {
  std::vector<std::string_view> names;
  for (const Operation *operation : known_senders(request, layout))
    names.emplace_back(operation->name);
  return fmt::format("module {} type {}{}{}", request.module, request.message_type,
                     names.empty() ? "" : " ", fmt::join(names, " or "));
}

std::string unknown_text(const Index &index, const Request &request, const Layout &layout) {
  std::string name = name_of(request, layout);
  std::optional<Packet> nearest;
  std::vector<Difference> least;
  for (Index::Number number : index.requests_of(request.module, request.message_type)) {
    Packet recorded = index.request(number);
    std::vector<Difference> found = differences(index, request, recorded, layout);
    if (nearest && found.size() >= least.size()) continue;
    nearest = std::move(recorded);
    least = std::move(found);
  }
  if (!nearest) return fmt::format("{}: not recorded; expected a recorded message type", name);
  return fmt::format("{}: not recorded {}", name, compared_text(*nearest, least));
}

std::string out_of_order_text(const Index &index, const Request &request, Index::Number expected,
                              const Layout &layout) {
  std::string name = name_of(request, layout);
  if (expected == Index::kNone)
    return fmt::format("{}: out of order; expected no more requests", name);
  Packet next = index.request(expected);
  if (next.module == request.module && next.message_type == request.message_type) {
    return fmt::format("{}: out of order {}", name,
                       compared_text(next, differences(index, request, next, layout)));
  }
  return fmt::format("{}: out of order; expected {}, {}", name,
                     name_of({next.module, next.message_type, next.record}, layout),
                     place_of(next));
}

void Complaints::add(uint64_t cause, const std::function<std::string()> &line) {
  auto known = complaints_.find(cause);
  if (known != complaints_.end()) {
    ++known->second.count;
  } else if (complaints_.size() < kMaxComplaints) {
    print_(complaints_[cause].line = line());
  } else {
    ++not_shown_;
  }
}

std::vector<std::string> Complaints::repeated() const {
  std::vector<std::string> lines;
  for (const auto &[cause, complaint] : complaints_) {
    if (complaint.count > 1)
      lines.push_back(fmt::format("{} times: {}", complaint.count, complaint.line));
  }
  if (not_shown_ > 0)
    lines.push_back(fmt::format("{} not shown", counted(not_shown_, "complaint")));
  return lines;
}

}  // namespace olt::replay
