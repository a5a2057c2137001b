#include <zmq.h>

#include "bench/rivals/rivals.h"

namespace olt::bench {

namespace {

void require_zmq(bool holds, const char *what) {
  if (!holds) fail(std::string(what) + ": " + zmq_strerror(zmq_errno()));
}

void serve(const std::string &address, int ready) {
  void *socket = zmq_socket(zmq_ctx_new(), ZMQ_REP);
  require_zmq(zmq_bind(socket, address.c_str()) == 0, "zmq_bind");
  say_ready(ready);
  Request request{};
  const Reply reply{};
  while (zmq_recv(socket, request.data(), request.size(), 0) == int{kRequestSize}) {
    require_zmq(zmq_send(socket, reply.data(), reply.size(), 0) >= 0, "zmq_send");
  }
}

class ZeroMq : public Contender {
 public:
  explicit ZeroMq(const Folder &folder)
      : address_("ipc://" + folder / "zeromq"),
        server_([this](int ready) { serve(address_, ready); }) {}
  ~ZeroMq() override {
    if (socket_ != nullptr) zmq_close(socket_);
    if (context_ != nullptr) zmq_ctx_term(context_);
  }

  std::string name() const override { return "ZeroMQ REQ/REP"; }

  void connect() override {
    context_ = zmq_ctx_new();
    socket_ = zmq_socket(context_, ZMQ_REQ);
    require_zmq(zmq_connect(socket_, address_.c_str()) == 0, "zmq_connect");
  }

  void exchange() override {
    const Request request{};
    Reply reply;
    require_zmq(zmq_send(socket_, request.data(), request.size(), 0) == int{kRequestSize},
                "zmq_send");
    require_zmq(zmq_recv(socket_, reply.data(), reply.size(), 0) == int{kReplySize}, "zmq_recv");
  }

 private:
  std::string address_;
  Child server_;
  void *context_ = nullptr;
  void *socket_ = nullptr;
};

}  // namespace

std::unique_ptr<Contender> start_zeromq(const Folder &folder) {
  return std::make_unique<ZeroMq>(folder);
}

}  // namespace olt::bench
