#include "box/box.h"

#include <new>

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

uint32_t result_of(olt_served_end end) {
  switch (end) {
    case OLT_SERVED_WITHHELD:
    case OLT_SERVED_VANISHED:
      return OLT_TRANSPORT_TIMED_OUT;
    case OLT_SERVED_DISCONNECTED:
      return OLT_TRANSPORT_LOST;
    case OLT_SERVED_ANSWERED:
      break;
  }
  return OLT_TRANSPORT_OK;
}

}  // namespace

struct Box::Parts {
  explicit Parts(Options options) : simulator(std::move(options)) {}

  static void handle(void *context, const olt_request *request, olt_answer *answer) noexcept;
  static void capture(void *context, const olt_served_exchange *served) noexcept;

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

void Box::Parts::capture(void *context, const olt_served_exchange *served) noexcept {
  if (served->module == kControlModule && served->message_type == kCapturePiece) return;
  bool is_answered = served->end == OLT_SERVED_ANSWERED;
  bool has_reply = is_answered && served->status == 0;
  capture::WrittenExchange exchange = {.message_type = served->message_type,
                                       .module = served->module,
                                       .request = served->request,
                                       .reply = has_reply ? served->reply : nullptr,
                                       .request_length = served->request_length,
                                       .reply_length = has_reply ? served->reply_length : 0U,
                                       .no_reply = served->no_reply,
                                       .result = result_of(served->end),
                                       .status = is_answered ? served->status : uint16_t{0},
                                       .began = served->began_ns,
                                       .duration = served->elapsed_ns,
                                       .process = served->process};
  try {
    static_cast<Parts *>(context)->simulator.captures().add(exchange, served->connection);
  } catch (const std::bad_alloc &) {
    // Captures do without this exchange.
    return;
  }
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
  parts_->simulator.captures().when_wanted([server, parts = parts_.get()](bool is_wanted) {
    olt_server_watch(server, is_wanted ? &Parts::capture : nullptr, parts);
  });
}

void Box::keep() {
  parts_->simulator.keep();
}

}  // namespace olt::box
