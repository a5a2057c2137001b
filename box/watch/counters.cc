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

void describe_counts(Archive &archive, MessageCounts &counts) {
  archive.number("exchanges", counts.exchanges);
  archive.number("refused", counts.refused);
  archive.number("unserved", counts.unserved);
  archive.number("bad_lengths", counts.bad_lengths);
  archive.number("faults", counts.faults);
}

void describe_key(Archive &archive, uint32_t &module, uint32_t &type) {
  archive.number("module", module);
  archive.number("type", type);
}

}  // namespace

void Counters::add(uint32_t module, uint32_t type, const MessageCounts &counts) {
  add_to(total_, counts);
  Key key = {module, type};
  bool room = messages_.size() < kMaxMessages || messages_.contains(key);
  if (counts.unserved == 0 || room) add_to(messages_[key], counts);
}

void Counters::describe(Archive &archive) {
  describe_counts(archive, total_);
  if (archive.is_reading()) messages_.clear();
  archive.list(
      "messages", SIZE_MAX,
      [&] {
        for (auto &[key, counts] : messages_) {
          archive.element([&, key = key, &counts = counts]() mutable {
            describe_key(archive, key.first, key.second);
            describe_counts(archive, counts);
          });
        }
      },
      [&] {
        Key key;
        describe_key(archive, key.first, key.second);
        describe_counts(archive, messages_[key]);
      });
}

}  // namespace olt::box
