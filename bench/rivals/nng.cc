#include <nng/nng.h>
#include <nng/protocol/reqrep0/rep.h>
#include <nng/protocol/reqrep0/req.h>

#include "bench/rivals/rivals.h"

namespace olt::bench {

namespace {

void require_nng(int error, const char *what) {
  if (error != 0) fail(std::string(what) + ": " + nng_strerror(error));
}

void receive(nng_socket socket, void *bytes, std::size_t size) {
  std::size_t length = size;
  require_nng(nng_recv(socket, bytes, &length, 0), "nng_recv");
  if (length != size) fail("nng_recv: a message of another length");
}

void serve(const std::string &address, int ready) {
  nng_socket socket;
  require_nng(nng_rep0_open(&socket), "nng_rep0_open");
  require_nng(nng_listen(socket, address.c_str(), nullptr, 0), "nng_listen");
  say_ready(ready);
  Request request{};
  Reply reply{};
  for (;;) {
    receive(socket, request.data(), request.size());
    require_nng(nng_send(socket, reply.data(), reply.size(), 0), "nng_send");
  }
}

class Nng : public Contender {
 public:
  explicit Nng(const Folder &folder)
      : address_("ipc://" + folder / "nng"),
        server_([this](int ready) { serve(address_, ready); }) {}
  ~Nng() override { nng_close(socket_); }

  std::string name() const override { return "nng REQ/REP"; }

  void connect() override {
    require_nng(nng_req0_open(&socket_), "nng_req0_open");
    require_nng(nng_dial(socket_, address_.c_str(), nullptr, 0), "nng_dial");
  }

  void exchange() override {
    Request request{};
    Reply reply;
    require_nng(nng_send(socket_, request.data(), request.size(), 0), "nng_send");
    receive(socket_, reply.data(), reply.size());
  }

 private:
  std::string address_;
  Child server_;
  nng_socket socket_ = NNG_SOCKET_INITIALIZER;
};

}  // namespace

std::unique_ptr<Contender> start_nng(const Folder &folder) {
  return std::make_unique<Nng>(folder);
}

}  // namespace olt::bench
