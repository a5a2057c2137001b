/// The formats in which oltctl prints. A new one is a value of Format and a file with its
/// Formatter.
#ifndef OLT_CLI_OUTPUT_FORMAT_H
#define OLT_CLI_OUTPUT_FORMAT_H

#include <nlohmann/json.hpp>

#include <array>
#include <memory>
#include <string>

#include "cli/output/result.h"

namespace olt::cli {

enum class Format { kText, kJson, kCsv };

/// The version that every JSON object carries.
inline constexpr int kJsonVersion = 1;

/// The object on one line. Bytes that are not UTF-8 become U+FFFD.
std::string json_line(const nlohmann::ordered_json &object);

/// What a call brought, as --json prints it.
nlohmann::ordered_json result_json(const Result &result);

/// Everything that commands print, each as text that ends with a newline, or empty. docs/oltctl.md
/// describes the formats.
class Formatter {
 public:
  virtual ~Formatter() = default;

  virtual std::string result(const Result &result) = 0;

  /// A row of a walk. A format may keep rows until the last one.
  virtual std::string row(const std::string &reader, const NamedValues &columns) = 0;
  virtual std::string end_of_rows() = 0;

  /// The box's reply to a control request.
  virtual std::string control(const std::string &command, const nlohmann::ordered_json &reply) = 0;
};

std::unique_ptr<Formatter> make_text_formatter();
std::unique_ptr<Formatter> make_json_formatter();
std::unique_ptr<Formatter> make_csv_formatter();

/// How a format is asked for, and what makes its formatter.
struct FormatName {
  const char *name;
  std::unique_ptr<Formatter> (*make)();
};

/// In the order of Format.
inline constexpr std::array<FormatName, 3> kFormats = {
    {{"text", make_text_formatter}, {"json", make_json_formatter}, {"csv", make_csv_formatter}}};

inline std::unique_ptr<Formatter> make_formatter(Format format) {
  return kFormats[static_cast<size_t>(format)].make();
}

}  // namespace olt::cli

#endif
