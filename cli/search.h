/// Finds operations and commands by what somebody remembers of them.
#ifndef OLT_CLI_SEARCH_H
#define OLT_CLI_SEARCH_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/operation.h"

namespace olt::cli {

/// Whether the word, or a synonym of it, is in the operation's name or summary, in the title of its
/// family, or in the name of an argument.
bool is_about(const catalog::Operation &operation, std::string_view word);

/// Whether there is an operation about the word.
bool is_listed(std::string_view word);
/// Throws Error when there is none.
void require_listed(std::string_view word);

/// Those of the names that are typed nearly like this one: at most three, nearest first.
std::vector<std::string> near_names(const std::string &name, std::span<const std::string> names);

/// Those of the names that have each part of this one, as "get_mac" has "get" and "mac": at most
/// three, shortest first.
std::vector<std::string> names_with_parts(const std::string &name,
                                          std::span<const std::string> names);

std::string lower(std::string_view text);

}  // namespace olt::cli

#endif
