// Captures. What is read is shown as lines and as JSON; damage is one line with its place.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

#include "base/bad_input.h"
#include "capture/reader.h"
#include "cli/show/show.h"
#include "fuzz/target.h"

namespace {

using olt::catalog::Layout;
using olt::fuzz::require;

void show(std::span<const uint8_t> bytes, bool as_json) {
  olt::capture::Reader reader("file", [&bytes](uint8_t *buffer, size_t size) {
    size_t count = std::min(size, bytes.size());
    std::copy_n(bytes.begin(), count, buffer);
    bytes = bytes.subspan(count);
    return count;
  });
  try {
    olt::cli::show_capture(reader, {}, Layout::box(), as_json, [as_json](const std::string &text) {
      olt::fuzz::require_lines(text);
      require(!as_json || nlohmann::json::accept(text), "an exchange is JSON", text);
    });
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
    require(std::string(error.what()).starts_with("file: at byte "), "damage has a place",
            error.what());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  show({data, size}, false);
  show({data, size}, true);
  return 0;
}
