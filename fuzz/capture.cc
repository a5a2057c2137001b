// Captures. What is read is shown as lines and as JSON, and answers are compared; damage is one
// line with its place.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string>

#include "base/bad_input.h"
#include "capture/reader.h"
#include "cli/compare/differences.h"
#include "cli/show/show.h"
#include "fuzz/target.h"

namespace {

using olt::catalog::Layout;
using olt::fuzz::require;

olt::capture::Reader reader_of(std::span<const uint8_t> &bytes) {
  return {"file", [&bytes](uint8_t *buffer, size_t size) {
            size_t count = std::min(size, bytes.size());
            std::copy_n(bytes.begin(), count, buffer);
            bytes = bytes.subspan(count);
            return count;
          }};
}

void show(std::span<const uint8_t> bytes, bool as_json) {
  olt::capture::Reader reader = reader_of(bytes);
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

/// Each answer with the one before it.
void compare(std::span<const uint8_t> bytes) {
  olt::capture::Reader reader = reader_of(bytes);
  olt::capture::Exchanges exchanges(reader);
  olt::cli::Answer before;
  try {
    while (std::optional<olt::capture::Exchange> exchange = exchanges.next()) {
      if (!exchange->answer) continue;
      const olt::capture::Packet &answer = *exchange->answer;
      auto operations = olt::cli::operations_of(*exchange, Layout::box());
      const auto *operation = operations.empty() ? nullptr : operations.front();
      for (const auto &difference :
           olt::cli::differences_of(answer, before, operation, Layout::box(), {})) {
        olt::fuzz::require_line(difference.recorded.text);
        olt::fuzz::require_line(difference.now.text);
      }
      before = {static_cast<int32_t>(answer.result), answer.status, answer.record};
      bool is_whole = answer.record.size() == answer.record_length;
      require(!is_whole ||
                  olt::cli::differences_of(answer, before, operation, Layout::box(), {}).empty(),
              "an answer equals itself", "");
    }
  } catch (const olt::BadInput &) {  // shown by show()
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  show({data, size}, false);
  show({data, size}, true);
  compare({data, size});
  return 0;
}
