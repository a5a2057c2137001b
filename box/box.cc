#include "box/box.h"

#include "box/simulator.h"

namespace olt::box {

namespace {

olt_answer_action action_on_wire(Answer::Action action) {
  switch (action) {
    case Answer::Action::kWithhold:
      return OLT_ANSWER_WITHHOLD;
    case Answer::Action::kDisconnect:
      return OLT_ANSWER_DISCONNECT;
    case Answer::Action::kSend:
      break;
  }
  return OLT_ANSWER_SEND;
}

void describe_server(Archive &archive, const olt_server *server) {
  olt_server_counters counters = {};
  olt_server_count(server, &counters);
  archive.number("exchanges", counters.exchanges);
  archive.number("connections", counters.connections);
  archive.number("refused_peers", counters.refused_peers);
  archive.number("broken_frames", counters.broken_frames);
  archive.number("stalled_clients", counters.stalled_clients);
  archive.number("vanished_clients", counters.vanished_clients);
  archive.number("over_limit_clients", counters.over_limit_clients);
}

}  // namespace

struct Box::Parts {
  explicit Parts(Options options) : simulator(std::move(options)) {}

  static void handle(void *context, const olt_request *request, olt_answer *answer) noexcept;

  Simulator simulator;
  Answer last;  ///< the server reads the reply after the handler has returned
};

void Box::Parts::handle(void *context, const olt_request *request, olt_answer *answer) noexcept {
  auto *parts = static_cast<Parts *>(context);
  const auto *data = static_cast<const uint8_t *>(request->data);
  parts->last =
      parts->simulator.handle(request->module, request->message_type, {data, request->length});
  answer->status = parts->last.status;
  answer->reply = parts->last.reply.data();
  answer->reply_length = static_cast<uint32_t>(parts->last.reply.size());
  answer->action = action_on_wire(parts->last.action);
  answer->delay_ms = parts->last.delay_ms;
}

Box::Box(Options options) : parts_(std::make_unique<Parts>(std::move(options))) {}

Box::~Box() = default;

void Box::serve(olt_server *server) {
  char error[256] = "";
  auto add = [&](uint32_t module) {
    if (olt_server_add(server, module, &Parts::handle, parts_.get(), error) != 0) {
      throw std::runtime_error(error);
    }
  };
  for (uint32_t module : kModules) add(module);
  add(kControlModule);
  parts_->simulator.control().count_server(
      [server](Archive &archive) { describe_server(archive, server); });
}

void Box::keep() {
  parts_->simulator.keep();
}

}  // namespace olt::box
