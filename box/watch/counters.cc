#include "box/watch/counters.h"

namespace olt::box {

namespace {

constexpr size_t kMostMessages = 400;

void add_to(Tally &sum, const Tally &tally) {
  sum.exchanges += tally.exchanges;
  sum.refused += tally.refused;
  sum.unserved += tally.unserved;
  sum.bad_lengths += tally.bad_lengths;
  sum.faults += tally.faults;
}

void write_tally(Json &value, const Tally &tally) {
  value["exchanges"] = tally.exchanges;
  value["refused"] = tally.refused;
  value["unserved"] = tally.unserved;
  value["bad_lengths"] = tally.bad_lengths;
  value["faults"] = tally.faults;
}

Tally read_tally(ObjectReader &reader) {
  Tally tally;
  tally.exchanges = reader.number("exchanges", kAnyU64);
  tally.refused = reader.number("refused", kAnyU64);
  tally.unserved = reader.number("unserved", kAnyU64);
  tally.bad_lengths = reader.number("bad_lengths", kAnyU64);
  tally.faults = reader.number("faults", kAnyU64);
  return tally;
}

}  // namespace

void Counters::add(uint32_t module, uint32_t type, const Tally &tally) {
  add_to(total_, tally);
  Key key = {module, type};
  bool room = messages_.size() < kMostMessages || messages_.contains(key);
  if (tally.unserved == 0 || room) add_to(messages_[key], tally);
}

Json Counters::to_json() const {
  Json value = Json::object();
  write_tally(value, total_);
  Json list = Json::array();
  for (const auto &[key, tally] : messages_) {
    Json message = {{"module", key.first}, {"type", key.second}};
    write_tally(message, tally);
    list.push_back(std::move(message));
  }
  value["messages"] = std::move(list);
  return value;
}

void Counters::from_json(const Json &value, const std::string &place) {
  ObjectReader reader(value, place);
  total_ = read_tally(reader);
  messages_.clear();
  for_each_element(reader.get("messages"), reader.place_of("messages"),
                   [this](const Json &element, const std::string &at) {
                     ObjectReader message(element, at);
                     Key key = {static_cast<uint32_t>(message.number("module", kAnyU32)),
                                static_cast<uint32_t>(message.number("type", kAnyU32))};
                     messages_[key] = read_tally(message);
                     message.finish();
                   });
  reader.finish();
}

}  // namespace olt::box
