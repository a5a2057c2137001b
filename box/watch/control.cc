#include "box/watch/control.h"

#include <fmt/core.h>

#include "base/bad_input.h"
#include "box/message/message.h"
#include "box/state/json_form.h"

namespace olt::box {

namespace {

constexpr size_t kMaxName = 32;

std::string failure(std::string reason) {
  Archive reply;
  bool ok = false;
  reply.flag("ok", ok);
  reply.text("error", reason, SIZE_MAX);
  return to_json_line(reply.take());
}

}  // namespace

std::string fault_add_command(std::string_view text) {
  return fmt::format(R"({{"command":"fault_add","fault":{}}})",
                     to_json_line(fault_from_text(text)));
}

std::string Control::answer(std::string_view command) {
  is_plain_ = false;
  try {
    std::string data = from_json_text(command);
    Archive read(data);
    Archive written;
    bool ok = true;
    written.flag("ok", ok);
    carry_out(read, written);
    std::string reply = to_json_line(written.take());
    return reply.size() <= kMaxReply ? reply : failure("the reply would be too long");
  } catch (const BadInput &error) {
    return failure(error.what());
  }
}

void Control::carry_out(Archive &command, Archive &reply) {
  std::string name;
  command.text("command", name, kMaxName);
  is_plain_ = name != "config_export" && name != "config_import";
  if (name == "fault_add") {
    Fault fault;
    command.object("fault", [&] { fault = read_fault(command); });
    command.finish();
    uint32_t id = faults_.arm(fault);
    reply.number("id", id);
  } else if (name == "fault_list") {
    command.finish();
    faults_.describe_faults(reply);
  } else if (name == "fault_clear") {
    clear(command, reply);
  } else if (name == "counters") {
    command.finish();
    reply.object("counters", [&] {
      counters_.describe(reply);
      if (server_) reply.object("server", [&] { server_(reply); });
    });
  } else if (name == "capture_start") {
    captures_.start(command, reply);
  } else if (name == "capture_stop") {
    captures_.stop(command, reply);
  } else if (name == "config_export") {
    transfer_.send(command, reply);
  } else if (name == "config_import") {
    transfer_.receive(command, reply);
  } else {
    command.refuse("command",
                   "fault_add, fault_list, fault_clear, counters, capture_start, capture_stop,"
                   " config_export or config_import");
  }
}

void Control::clear(Archive &command, Archive &reply) {
  uint64_t cleared = 1;
  bool one = command.has("id");
  uint32_t id = 0;
  if (one) command.number("id", id);
  command.finish();
  if (one) {
    if (!faults_.clear(id)) throw BadInput(fmt::format("no fault {} is armed", id));
  } else {
    cleared = faults_.clear_all();
  }
  reply.number("cleared", cleared);
}

}  // namespace olt::box
