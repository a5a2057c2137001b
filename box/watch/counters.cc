#include "box/watch/counters.h"

namespace olt::box {

namespace {

constexpr size_t kMaxMessages = 400;

void add_to(MessageCounts &sum, const MessageCounts &counts) {
  sum.exchanges += counts.exchanges;
  sum.refused += counts.refused;
  sum.unserved += counts.unserved;
  sum.bad_lengths += counts.bad_lengths;
  sum.faults += counts.faults;
}

void write_counts(Json &value, const MessageCounts &counts) {
  value["exchanges"] = counts.exchanges;
  value["refused"] = counts.refused;
  value["unserved"] = counts.unserved;
  value["bad_lengths"] = counts.bad_lengths;
  value["faults"] = counts.faults;
}

MessageCounts read_counts(ObjectReader &reader) {
  MessageCounts counts;
  counts.exchanges = reader.number("exchanges", kAnyU64);
  counts.refused = reader.number("refused", kAnyU64);
  counts.unserved = reader.number("unserved", kAnyU64);
  counts.bad_lengths = reader.number("bad_lengths", kAnyU64);
  counts.faults = reader.number("faults", kAnyU64);
  return counts;
}

}  // namespace

void Counters::add(uint32_t module, uint32_t type, const MessageCounts &counts) {
  add_to(total_, counts);
  Key key = {module, type};
  bool room = messages_.size() < kMaxMessages || messages_.contains(key);
  if (counts.unserved == 0 || room) add_to(messages_[key], counts);
}

Json Counters::to_json() const {
  Json value = Json::object();
  write_counts(value, total_);
  Json list = Json::array();
  for (const auto &[key, counts] : messages_) {
    Json message = {{"module", key.first}, {"type", key.second}};
    write_counts(message, counts);
    list.push_back(std::move(message));
  }
  value["messages"] = std::move(list);
  return value;
}

void Counters::from_json(const Json &value, const std::string &place) {
  ObjectReader reader(value, place);
  total_ = read_counts(reader);
  messages_.clear();
  for_each_element(reader.get("messages"), reader.place_of("messages"),
                   [this](const Json &element, const std::string &at) {
                     ObjectReader message(element, at);
                     Key key = {static_cast<uint32_t>(message.number("module", kAnyU32)),
                                static_cast<uint32_t>(message.number("type", kAnyU32))};
                     messages_[key] = read_counts(message);
                     message.finish();
                   });
  reader.finish();
}

}  // namespace olt::box
