/// Configurations of a box as text: files with one, and how two differ.
#ifndef OLT_CLI_BOX_CONFIGURATION_H
#define OLT_CLI_BOX_CONFIGURATION_H

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

/// Reads a file with a configuration; "-" is standard input. Throws Error, whose line begins with
/// the command.
std::string read_configuration(std::string_view command, const std::string &path);

/// A place where two configurations differ.
struct Difference {
  std::string place;                     ///< a JSON pointer
  std::optional<nlohmann::json> before;  ///< nothing where only the second has a value
  std::optional<nlohmann::json> after;   ///< nothing where only the first has one
};

/// How the second text differs from the first; both are JSON. Secrets within a value are masked
/// unless they are to be shown, and one that a text does not show equals any.
std::vector<Difference> compare_configurations(std::string_view first, std::string_view second,
                                               bool with_secrets);

/// "PLACE\n- before\n+ after\n" for each. Where only a secret differs, both are the mask.
std::string differences_text(const std::vector<Difference> &differences);
/// {"differences":[{"place":...,"before":...,"after":...}]}, without what is not there.
nlohmann::ordered_json differences_json(const std::vector<Difference> &differences);

}  // namespace olt::cli

#endif
