// Commands to the box's control module, a line each, and the faults that they arm.
#include <string>
#include <string_view>

#include "base/bad_input.h"
#include "box/watch/faults.h"
#include "cli/output/format.h"
#include "fuzz/small_box.h"
#include "fuzz/target.h"

namespace {

using olt::fuzz::Input;
using olt::fuzz::Json;
using olt::fuzz::require;
using olt::fuzz::SmallBox;

Json faults_of(SmallBox &box) {
  return box.command(R"({"command": "fault_list"})")["faults"];
}

/// Words KEY=VALUE, as testers write them.
void arm(SmallBox &box, std::string_view words) {
  constexpr size_t kMaxFaults = 256;
  try {
    Json reply = box.command(olt::box::fault_add_command(words));
    require(reply["ok"] == true || faults_of(box).size() == kMaxFaults,
            "a fault that is understood can be armed", reply.dump());
  } catch (const olt::BadInput &error) {
    olt::fuzz::require_line(error.what());
  }
}

void carry_out(SmallBox &box, std::string_view text) {
  Json before = faults_of(box);
  Json reply = box.command(text);
  if (reply["ok"] == false) {
    require(faults_of(box) == before, "a refused command changes nothing", reply.dump());
    return;
  }
  olt::fuzz::require_lines(olt::cli::make_text_formatter()->control("control", reply));
  if (!reply.contains("id")) return;
  Json armed = faults_of(box);
  require(armed.size() == before.size() + 1 && armed.back()["id"] == reply["id"],
          "an armed fault is listed", armed.dump());
}

void require_restart_keeps_faults(SmallBox &box) {
  Json before = faults_of(box);
  box.restart();
  require(faults_of(box) == before, "faults outlive the box", before.dump());
}

}  // namespace

// A line that begins with '+' is a fault in words; any other one is a command.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  SmallBox box;
  std::string_view text = Input(data, size).text();
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.starts_with('+')) {
      arm(box, line.substr(1));
    } else {
      carry_out(box, line);
    }
  }
  require_restart_keeps_faults(box);
  return 0;
}
