#include <rpc/rpc.h>
#include <sys/un.h>

#include "bench/rivals/rivals.h"
#include "exchange.h"

extern "C" olt_bench_reply *exchange_1_svc(olt_bench_request * /*request*/, svc_req * /*call*/) {
  static olt_bench_reply reply{};
  return &reply;
}

// Made by rpcgen.
extern "C" void olt_bench_1(svc_req *call, SVCXPRT *transport);

namespace olt::bench {

namespace {

void serve(std::string path, int ready) {
  SVCXPRT *transport = svcunix_create(RPC_ANYSOCK, 0, 0, path.data());
  if (transport == nullptr) fail("svcunix_create failed");
  if (!svc_register(transport, OLT_BENCH, OLT_BENCH_1, olt_bench_1, 0)) {
    fail("svc_register failed");
  }
  say_ready(ready);
  svc_run();
}

class OncRpc : public Contender {
 public:
  explicit OncRpc(const Folder &folder)
      : path_(folder / "onc-rpc"), server_([this](int ready) { serve(path_, ready); }) {}
  ~OncRpc() override {
    if (client_ != nullptr) clnt_destroy(client_);
  }

  std::string name() const override { return "ONC RPC"; }

  void connect() override {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    int socket = RPC_ANYSOCK;
    client_ = clntunix_create(&address, OLT_BENCH, OLT_BENCH_1, &socket, 0, 0);
    if (client_ == nullptr) fail(clnt_spcreateerror("clntunix_create"));
  }

  void exchange() override {
    olt_bench_request request{};
    if (exchange_1(&request, client_) == nullptr) fail(clnt_sperror(client_, "exchange"));
  }

 private:
  std::string path_;
  Child server_;
  CLIENT *client_ = nullptr;
};

}  // namespace

std::unique_ptr<Contender> start_onc_rpc(const Folder &folder) {
  return std::make_unique<OncRpc>(folder);
}

}  // namespace olt::bench
