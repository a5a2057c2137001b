// Configurations as text. One is taken whole, and then exported as one that makes the same box, or
// it is refused with one line and changes nothing.
#include <optional>
#include <string>
#include <string_view>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/state/json_form.h"
#include "fuzz/small_box.h"
#include "fuzz/target.h"

namespace {

using olt::box::from_json_text;
using olt::box::Secrets;
using olt::box::to_json_text;
using olt::fuzz::Input;
using olt::fuzz::Json;
using olt::fuzz::require;
using olt::fuzz::SmallBox;

/// The configuration of the small box fits into one piece.
std::string exported(SmallBox &box) {
  Json reply = box.command(R"({"command":"config_export","offset":0,"secrets":true})");
  require(reply["ok"] == true, "a configuration can be exported", reply.dump());
  return *olt::utf8_to_bytes(reply["piece"].get<std::string>());
}

Json imported(SmallBox &box, std::string_view text, bool adopts) {
  Json command = {{"command", "config_import"},
                  {"offset", 0},
                  {"length", text.size()},
                  {"adopt", adopts},
                  {"piece", olt::bytes_to_utf8(text)}};
  return box.command(command.dump());
}

void read(std::string_view text) {
  try {
    std::string archive = from_json_text(text);
    std::string written = to_json_text(archive, Secrets::kShown);
    require(from_json_text(written) == archive, "what is written is read as it was", written);
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
  }
}

/// What a box exports that has taken the text; nothing when it has refused it.
std::optional<std::string> exported_after(std::string_view text, bool adopts) {
  SmallBox box;
  std::string before = exported(box);
  Json reply = imported(box, text, adopts);
  std::string after = exported(box);
  if (reply["ok"] != true) {
    require(after == before, "a refused configuration changes nothing", reply.dump());
    return std::nullopt;
  }
  for (const Json &left_out : reply["left_out"]) {
    olt::fuzz::require_line(left_out["reason"].get<std::string>());
  }
  return after;
}

void take(std::string_view text, bool adopts) {
  auto after = exported_after(text, adopts);
  if (!after) return;
  require(exported_after(*after, false) == after, "an import makes the box that was exported",
          *after);
}

const std::string &sample() {
  static const std::string instance = [] {
    SmallBox box;
    return exported(box);
  }();
  return instance;
}

}  // namespace

// The first byte says whether the rest is a text, or a place in what the box exports, how much of
// it is replaced, and by what; and whether what does not fit is left out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input input(data, size);
  uint8_t head = input.u8();
  std::string text;
  if ((head & 1) != 0) {
    text = sample();
    size_t at = input.u16() % text.size();
    size_t length = input.u8();
    text.replace(at, length, input.text());
  } else {
    text = input.text();
  }
  if (text.empty()) return 0;
  read(text);
  take(text, (head & 2) != 0);
  return 0;
}
