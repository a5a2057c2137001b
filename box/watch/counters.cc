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

void describe_tally(Archive &archive, Tally &tally) {
  archive.number("exchanges", tally.exchanges);
  archive.number("refused", tally.refused);
  archive.number("unserved", tally.unserved);
  archive.number("bad_lengths", tally.bad_lengths);
  archive.number("faults", tally.faults);
}

void describe_key(Archive &archive, uint32_t &module, uint32_t &type) {
  archive.number("module", module);
  archive.number("type", type);
}

}  // namespace

void Counters::add(uint32_t module, uint32_t type, const Tally &tally) {
  add_to(total_, tally);
  Key key = {module, type};
  bool room = messages_.size() < kMostMessages || messages_.contains(key);
  if (tally.unserved == 0 || room) add_to(messages_[key], tally);
}

void Counters::describe(Archive &archive) {
  describe_tally(archive, total_);
  if (archive.is_reading()) messages_.clear();
  archive.list(
      "messages", SIZE_MAX,
      [&] {
        for (auto &[key, tally] : messages_) {
          archive.element([&, key = key, &tally = tally]() mutable {
            describe_key(archive, key.first, key.second);
            describe_tally(archive, tally);
          });
        }
      },
      [&] {
        Key key;
        describe_key(archive, key.first, key.second);
        describe_tally(archive, messages_[key]);
      });
}

}  // namespace olt::box
