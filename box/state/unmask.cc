#include "box/state/unmask.h"

#include <algorithm>
#include <functional>
#include <map>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/archive.h"
#include "box/state/cbor.h"

namespace olt::box {

using Kind = CborReader::Kind;

namespace {

constexpr size_t kMaxDepth = 32;

/// The way from the root to a value: the keys of members, and for elements of lists the values that
/// identify them. Each ends with a zero.
using Place = std::string;
using Keys = std::vector<std::string_view>;

bool is_plain(const CborReader::Value &value) {
  return value.kind != Kind::kMap && value.kind != Kind::kList;
}

std::string text_value(const CborReader::Value &value) {
  if (value.kind == Kind::kBytes) return to_hex(as_bytes(value.data));
  return value.kind == Kind::kText ? std::string(value.data) : std::to_string(value.number);
}

/// The keys of the members that identify an element.
Keys identifying_keys(CborReader element) {
  Keys keys;
  if (element.next().kind != Kind::kMap) return keys;
  for (;;) {
    CborReader::Value key = element.next();
    if (key.kind == Kind::kEnd) break;
    CborReader::Value value = CborReader(element).next();
    if (value.is_secret) return keys;
    if (is_plain(value)) keys.push_back(key.data);
    element.skip();
  }
  keys.resize(std::min<size_t>(keys.size(), 1));
  return keys;
}

/// The values of these members in an element.
Place identity(CborReader element, const Keys &keys) {
  std::vector<std::string> values(keys.size());
  if (element.next().kind == Kind::kMap) {
    for (;;) {
      CborReader::Value key = element.next();
      if (key.kind == Kind::kEnd) break;
      CborReader::Value value = CborReader(element).next();
      auto known = std::find(keys.begin(), keys.end(), key.data);
      if (known != keys.end() && is_plain(value)) {
        values[static_cast<size_t>(known - keys.begin())] = text_value(value);
      }
      element.skip();
    }
  }
  Place place;
  for (const std::string &value : values) place += value + '\0';
  return place;
}

/// Visits each value of an archive that is neither a list nor a map.
class Visit {
 public:
  /// The keys that identify the elements of a list, given its place and its first element.
  using KeysOf = std::function<Keys(const Place &list, const CborReader &first)>;
  using OnValue = std::function<void(const Place &place, const CborReader::Value &value,
                                     size_t begin, size_t end)>;

  Visit(std::string_view archive, KeysOf keys_of, OnValue on_value)
      : reader_(archive), keys_of_(std::move(keys_of)), on_value_(std::move(on_value)) {}

  void run() { visit(0); }

 private:
  void visit(size_t depth) {
    if (depth > kMaxDepth) throw BadInput("nests deeper than state does");
    size_t begin = reader_.position();
    CborReader::Value value = reader_.next();
    if (value.kind == Kind::kMap) {
      visit_members(depth);
    } else if (value.kind == Kind::kList) {
      visit_elements(depth);
    } else {
      on_value_(place_, value, begin, reader_.position());
    }
  }

  void visit_members(size_t depth) {
    for (;;) {
      CborReader::Value key = reader_.next();
      if (key.kind == Kind::kEnd) return;
      visit_within(std::string(key.data) + '\0', depth);
    }
  }

  void visit_elements(size_t depth) {
    Keys keys = keys_of_(place_, reader_);
    for (;;) {
      CborReader next = reader_;
      if (next.next().kind == Kind::kEnd) {
        reader_ = next;
        return;
      }
      visit_within(identity(reader_, keys), depth);
    }
  }

  void visit_within(const Place &part, size_t depth) {
    size_t length = place_.size();
    place_ += part;
    visit(depth + 1);
    place_.resize(length);
  }

  CborReader reader_;
  KeysOf keys_of_;
  OnValue on_value_;
  Place place_;
};

}  // namespace

std::string unmask(std::string_view archive, std::string_view present) {
  std::map<Place, Keys> keys;
  std::map<Place, std::string_view> secrets;
  Visit(
      present,
      [&](const Place &list, const CborReader &first) {
        return keys[list] = identifying_keys(first);
      },
      [&](const Place &place, const CborReader::Value &value, size_t begin, size_t end) {
        if (value.is_secret) secrets[place] = present.substr(begin, end - begin);
      })
      .run();
  std::string unmasked;
  size_t done = 0;
  Visit(
      archive,
      [&](const Place &list, const CborReader & /*first*/) {
        auto known = keys.find(list);
        return known == keys.end() ? Keys() : known->second;
      },
      [&](const Place &place, const CborReader::Value &value, size_t begin, size_t end) {
        if (value.kind != Kind::kText || value.data != kMask) return;
        auto secret = secrets.find(place);
        if (secret == secrets.end()) return;
        unmasked += archive.substr(done, begin - done);
        unmasked += secret->second;
        done = end;
      })
      .run();
  return unmasked += archive.substr(done);
}

}  // namespace olt::box
