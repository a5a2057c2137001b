#include "box/watch/control.h"

#include <fmt/format.h>

#include "base/bad_input.h"

namespace olt::box {

namespace {

constexpr size_t kMaxReply = 65'535;

std::string failure(std::string_view reason) {
  return Json({{"ok", false}, {"error", reason}}).dump();
}

}  // namespace

std::string fault_add_command(std::string_view text) {
  return Json({{"command", "fault_add"}, {"fault", fault_from_text(text)}}).dump();
}

std::string Control::answer(std::string_view command) {
  try {
    std::string reply = carry_out(parse_json(command)).dump();
    return reply.size() <= kMaxReply ? reply : failure("the reply would be too long");
  } catch (const BadInput &error) {
    return failure(error.what());
  }
}

Json Control::carry_out(const Json &command) {
  ObjectReader reader(command, "");
  std::string name = reader.text("command");
  Json reply = {{"ok", true}};
  if (name == "fault_add") {
    const Json &fault = reader.get("fault");
    reader.finish();
    reply["id"] = faults_.add(fault, "/fault");
  } else if (name == "fault_list") {
    reader.finish();
    reply["faults"] = faults_.list();
  } else if (name == "fault_clear") {
    reply.update(clear(reader));
  } else if (name == "counters") {
    reader.finish();
    reply["counters"] = counters_.to_json();
    if (server_) reply["counters"]["server"] = server_();
  } else {
    refuse("/command", command["command"], "fault_add, fault_list, fault_clear or counters");
  }
  return reply;
}

Json Control::clear(ObjectReader &reader) {
  bool one = reader.find("id") != nullptr;
  auto id = static_cast<uint32_t>(reader.number("id", kAnyU32, 0));
  reader.finish();
  if (!one) return {{"cleared", faults_.clear_all()}};
  if (!faults_.clear(id)) throw BadInput(fmt::format("/id: no fault {} is armed", id));
  return {{"cleared", 1}};
}

}  // namespace olt::box
