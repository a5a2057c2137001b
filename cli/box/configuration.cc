#include "cli/box/configuration.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <system_error>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/archive.h"
#include "box/state/json_form.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace olt::cli {

using nlohmann::json;

namespace {

/// The most that a box accepts.
constexpr size_t kMaxFile = size_t{64} << 20;

std::string read_standard_input(std::error_code &error) {
  std::string text;
  char part[64 * 1024];
  while (std::cin.read(part, sizeof part), std::cin.gcount() > 0) {
    text.append(part, static_cast<size_t>(std::cin.gcount()));
    if (text.size() > kMaxFile) {
      error = std::make_error_code(std::errc::file_too_large);
      return "";
    }
  }
  std::cin.clear();
  return text;
}

bool is_mask(const json &value) {
  return value.is_string() && value.get_ref<const std::string &>() == box::kMask;
}

/// Whether the values are equal. A masked secret equals any other.
bool same(const json &one, const json &other, bool secret) {
  if (secret && (is_mask(one) || is_mask(other))) return true;
  if (one.type() != other.type() || !one.is_structured()) return one == other;
  if (one.size() != other.size()) return false;
  auto theirs = other.items().begin();
  for (const auto &[key, value] : one.items()) {
    if (one.is_object() && theirs.key() != key) return false;
    if (!same(value, theirs.value(), secret || box::is_secret_member(key))) return false;
    ++theirs;
  }
  return true;
}

class Comparison {
 public:
  explicit Comparison(bool with_secrets) : with_secrets_(with_secrets) {}

  std::vector<Difference> take() { return std::move(differences_); }

  void compare(const json &first, const json &second, const std::string &place, bool secret) {
    if (first.is_object() && second.is_object()) {
      compare_members(first, second, place, secret);
    } else if (first.is_array() && second.is_array()) {
      compare_elements(first, second, place, secret);
    } else if (!same(first, second, secret)) {
      differences_.push_back(
          {place.empty() ? "/" : place, shown(first, secret), shown(second, secret)});
    }
  }

 private:
  void compare_members(const json &first, const json &second, const std::string &place,
                       bool secret) {
    auto left = first.begin();
    auto right = second.begin();
    while (left != first.end() || right != second.end()) {
      bool is_first = right == second.end() || (left != first.end() && left.key() <= right.key());
      bool is_second = left == first.end() || (right != second.end() && right.key() <= left.key());
      const std::string &key = is_first ? left.key() : right.key();
      bool hides = secret || box::is_secret_member(key);
      std::string member = place + '/' + box::pointer_part(key);
      if (is_first && is_second) {
        compare(*left, *right, member, hides);
      } else {
        add(member, is_first ? &*left : nullptr, is_second ? &*right : nullptr, hides);
      }
      if (is_first) ++left;
      if (is_second) ++right;
    }
  }

  /// Skips equal elements at both ends, so that one inserted element is one difference.
  void compare_elements(const json &first, const json &second, const std::string &place,
                        bool secret) {
    size_t begin = 0;
    size_t ends[] = {first.size(), second.size()};
    while (begin < std::min(ends[0], ends[1]) && same(first[begin], second[begin], secret)) ++begin;
    while (begin < std::min(ends[0], ends[1]) &&
           same(first[ends[0] - 1], second[ends[1] - 1], secret)) {
      --ends[0];
      --ends[1];
    }
    for (size_t i = begin; i < std::max(ends[0], ends[1]); ++i) {
      std::string element = fmt::format("{}/{}", place, i);
      if (i < ends[0] && i < ends[1]) {
        compare(first[i], second[i], element, secret);
      } else {
        add(element, i < ends[0] ? &first[i] : nullptr, i < ends[1] ? &second[i] : nullptr, secret);
      }
    }
  }

  void add(const std::string &place, const json *before, const json *after, bool secret) {
    Difference &difference = differences_.emplace_back();
    difference.place = place;
    if (before != nullptr) difference.before = shown(*before, secret);
    if (after != nullptr) difference.after = shown(*after, secret);
  }

  json shown(const json &value, bool secret) const {
    if (with_secrets_) return value;
    if (!value.is_structured()) return secret ? json(box::kMask) : value;
    json copy = value;
    for (const auto &[key, member] : value.items()) {
      bool hides = secret || (value.is_object() && box::is_secret_member(key));
      (value.is_object() ? copy[key] : copy[std::stoul(key)]) = shown(member, hides);
    }
    return copy;
  }

  bool with_secrets_;
  std::vector<Difference> differences_;
};

}  // namespace

std::string read_configuration(std::string_view command, const std::string &path) {
  std::error_code error;
  std::string text = path == "-" ? read_standard_input(error) : read_file(path, kMaxFile, error);
  if (error) {
    wrong_usage("{}: cannot read {}: {}; expected a configuration of at most 64 MiB", command,
                printable(path), error.message());
  }
  try {
    box::from_json_text(text);
  } catch (const BadInput &mistake) {
    wrong_usage("{}: {}: {}", command, printable(path), mistake.what());
  }
  return text;
}

std::vector<Difference> compare_configurations(std::string_view first, std::string_view second,
                                               bool with_secrets) {
  Comparison comparison(with_secrets);
  comparison.compare(json::parse(first), json::parse(second), "", false);
  return comparison.take();
}

std::string differences_text(const std::vector<Difference> &differences) {
  std::string text;
  for (const Difference &difference : differences) {
    text += difference.place + '\n';
    if (difference.before) text += fmt::format("- {}\n", difference.before->dump(-1, ' ', true));
    if (difference.after) text += fmt::format("+ {}\n", difference.after->dump(-1, ' ', true));
  }
  return text;
}

nlohmann::ordered_json differences_json(const std::vector<Difference> &differences) {
  auto list = nlohmann::ordered_json::array();
  for (const Difference &difference : differences) {
    nlohmann::ordered_json &entry = list.emplace_back();
    entry["place"] = difference.place;
    if (difference.before) entry["before"] = *difference.before;
    if (difference.after) entry["after"] = *difference.after;
  }
  return {{"differences", list}};
}

}  // namespace olt::cli
