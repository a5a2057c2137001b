#include "cli/search.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/text/error.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::Operation;

namespace {

constexpr size_t kMaxSuggestions = 3;

/// What somebody may look for, and how the names have it.
struct Synonym {
  std::string_view word;
  std::string_view name;
};
constexpr Synonym kSynonyms[] = {
    {"allowlist", "authallowed"},
    {"bandwidth", "dba"},
    {"bind", "banding"},
    {"blacklist", "blocklist"},
    {"counter", "statics"},
    {"description", "desc"},
    {"encryption", "linksecurity"},
    {"factory", "default"},
    {"firmware", "update"},
    {"group", "grounp"},
    {"information", "info"},
    {"interface", "inteface"},
    {"multicast", "muticast"},
    {"ntp", "sntp"},
    {"optics", "optical"},
    {"parameter", "paramter"},
    {"password", "user_level"},
    {"phone", "voip"},
    {"policing", "policying"},
    {"remove", "delete"},
    {"restart", "reboot"},
    {"sfp", "optical"},
    {"statistics", "statics"},
    {"telephone", "voip"},
    {"time", "sntp"},
    {"transceiver", "optical"},
    {"upgrade", "update"},
    {"user", "user_level"},
    {"voice", "voip"},
    {"whitelist", "authallowed"},
};

bool has(std::string_view text, std::string_view word) {
  return lower(text).find(word) != std::string::npos;
}

bool is_family_about(const Operation &operation, std::string_view word) {
  return std::any_of(catalog::families().begin(), catalog::families().end(),
                     [&](const Family &family) {
                       return has(family.title, word) &&
                              std::any_of(family.operations.begin(), family.operations.end(),
                                          [&operation](const Operation &member) {
                                            return std::string_view(member.name) == operation.name;
                                          });
                     });
}

bool has_argument(const Operation &operation, std::string_view word) {
  return std::any_of(
      operation.arguments().begin(), operation.arguments().end(), [word](const Argument &argument) {
        return has(argument.name, word) ||
               std::any_of(argument.own_fields().begin(), argument.own_fields().end(),
                           [word](const Field &field) {
                             return field.role != catalog::Role::kReserved && has(field.name, word);
                           });
      });
}

/// Whether the name has the part, or a synonym of it.
bool has_part(const std::string &name, std::string_view part) {
  return name.find(part) != std::string::npos ||
         std::any_of(std::begin(kSynonyms), std::end(kSynonyms), [&](const Synonym &synonym) {
           return part == synonym.word && name.find(synonym.name) != std::string::npos;
         });
}

bool has_parts(const std::string &name, std::string_view parts) {
  while (!parts.empty()) {
    std::string_view part = parts.substr(0, parts.find('_'));
    parts.remove_prefix(std::min(part.size() + 1, parts.size()));
    if (!has_part(name, part)) return false;
  }
  return true;
}

/// Letters to insert, drop or change to get from one word to the other.
size_t distance(std::string_view from, std::string_view to) {
  std::vector<size_t> row(to.size() + 1);
  for (size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= from.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i);
    for (size_t j = 1; j <= to.size(); ++j) {
      size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row[to.size()];
}

/// How near a name is, and the name.
using Suggestion = std::pair<size_t, std::string>;

std::vector<std::string> nearest(std::vector<Suggestion> suggestions) {
  std::sort(suggestions.begin(), suggestions.end());
  suggestions.resize(std::min(suggestions.size(), kMaxSuggestions));
  std::vector<std::string> names;
  names.reserve(suggestions.size());
  for (auto &[distance, name] : suggestions) names.push_back(std::move(name));
  return names;
}

}  // namespace

bool is_about(const Operation &operation, std::string_view word) {
  std::string lowered = lower(word);
  if (has(operation.name, lowered) || has(operation.summary, lowered)) return true;
  if (std::any_of(std::begin(kSynonyms), std::end(kSynonyms), [&](const Synonym &synonym) {
        return lowered == synonym.word && has(operation.name, synonym.name);
      })) {
    return true;
  }
  return has_argument(operation, lowered) || is_family_about(operation, lowered);
}

bool is_listed(std::string_view word) {
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      if (is_about(operation, word)) return true;
    }
  }
  return false;
}

void require_listed(std::string_view word) {
  if (is_listed(word)) return;
  wrong_usage("list: no operation is about '{}'; expected another word, or none for all",
              printable(word));
}

std::vector<std::string> near_names(const std::string &name, std::span<const std::string> names) {
  std::vector<Suggestion> near;
  for (const std::string &candidate : names) {
    size_t changes = distance(lower(name), lower(candidate));
    if (changes <= std::max<size_t>(2, name.size() / 4)) near.emplace_back(changes, candidate);
  }
  return nearest(std::move(near));
}

std::vector<std::string> names_with_parts(const std::string &name,
                                          std::span<const std::string> names) {
  std::vector<Suggestion> found;
  if (name.find('_') == std::string::npos) return {};
  for (const std::string &candidate : names) {
    if (has_parts(lower(candidate), lower(name))) found.emplace_back(candidate.size(), candidate);
  }
  return nearest(std::move(found));
}

std::string lower(std::string_view text) {
  std::string lowered(text);
  for (char &character : lowered) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return lowered;
}

}  // namespace olt::cli
