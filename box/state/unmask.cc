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

/// Keys of members, each with a zero behind it; for an element of a list the values that it is
/// found by.
using Place = std::string;
using Keys = std::vector<std::string_view>;

bool is_plain(const CborReader::Value &value) {
  return value.kind != Kind::kMap && value.kind != Kind::kList;
}

std::string text_of(const CborReader::Value &value) {
  if (value.kind == Kind::kBytes) return to_hex(as_bytes(value.data));
  return value.kind == Kind::kText ? std::string(value.data) : std::to_string(value.number);
}

/// The keys of the members that an element is found by.
Keys finding_keys(CborReader element) {
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

/// Their values in an element.
Place found_by(CborReader element, const Keys &keys) {
  std::vector<std::string> values(keys.size());
  if (element.next().kind == Kind::kMap) {
    for (;;) {
      CborReader::Value key = element.next();
      if (key.kind == Kind::kEnd) break;
      CborReader::Value value = CborReader(element).next();
      auto known = std::find(keys.begin(), keys.end(), key.data);
      if (known != keys.end() && is_plain(value)) {
        values[static_cast<size_t>(known - keys.begin())] = text_of(value);
      }
      element.skip();
    }
  }
  Place place;
  for (const std::string &value : values) place += value + '\0';
  return place;
}

/// Passes all values of an archive that are neither lists nor maps, with their places.
class Passage {
 public:
  /// What a list's elements are found by, given the place of the list and its first element.
  using KeysOf = std::function<Keys(const Place &list, const CborReader &first)>;
  using OnValue = std::function<void(const Place &place, const CborReader::Value &value,
                                     size_t begin, size_t end)>;

  Passage(std::string_view archive, KeysOf keys_of, OnValue on_value)
      : reader_(archive), keys_of_(std::move(keys_of)), on_value_(std::move(on_value)) {}

  void run() { pass(0); }

 private:
  void pass(size_t depth) {
    if (depth > kMaxDepth) throw BadInput("nests deeper than state does");
    size_t begin = reader_.position();
    CborReader::Value value = reader_.next();
    if (value.kind == Kind::kMap) {
      pass_members(depth);
    } else if (value.kind == Kind::kList) {
      pass_elements(depth);
    } else {
      on_value_(place_, value, begin, reader_.position());
    }
  }

  void pass_members(size_t depth) {
    for (;;) {
      CborReader::Value key = reader_.next();
      if (key.kind == Kind::kEnd) return;
      pass_within(std::string(key.data) + '\0', depth);
    }
  }

  void pass_elements(size_t depth) {
    Keys keys = keys_of_(place_, reader_);
    for (;;) {
      CborReader next = reader_;
      if (next.next().kind == Kind::kEnd) {
        reader_ = next;
        return;
      }
      pass_within(found_by(reader_, keys), depth);
    }
  }

  void pass_within(const Place &part, size_t depth) {
    size_t length = place_.size();
    place_ += part;
    pass(depth + 1);
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
  Passage(
      present,
      [&](const Place &list, const CborReader &first) { return keys[list] = finding_keys(first); },
      [&](const Place &place, const CborReader::Value &value, size_t begin, size_t end) {
        if (value.is_secret) secrets[place] = present.substr(begin, end - begin);
      })
      .run();
  std::string unmasked;
  size_t done = 0;
  Passage(
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
