#include <grpcpp/grpcpp.h>

#include "bench/rivals/rivals.h"
#include "exchange.grpc.pb.h"

namespace olt::bench {

namespace {

class Service : public rpc::Bench::Service {
  grpc::Status Exchange(grpc::ServerContext * /*context*/, const rpc::Request *request,
                        rpc::Reply *reply) override {
    if (request->bytes().size() != kRequestSize) {
      return {grpc::StatusCode::INVALID_ARGUMENT, "a request of another length"};
    }
    reply->mutable_bytes()->assign(kReplySize, '\0');
    return grpc::Status::OK;
  }
};

void serve(const std::string &address, int ready) {
  Service service;
  grpc::ServerBuilder builder;
  builder.AddListeningPort(address, grpc::InsecureServerCredentials());
  builder.RegisterService(&service);
  const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
  if (server == nullptr) fail("gRPC: the server does not start");
  say_ready(ready);
  server->Wait();
}

class Grpc : public Contender {
 public:
  explicit Grpc(const Folder &folder)
      : address_("unix:" + folder / "grpc"),
        server_([this](int ready) { serve(address_, ready); }) {}

  std::string name() const override { return "gRPC C++"; }

  void connect() override {
    stub_ = rpc::Bench::NewStub(grpc::CreateChannel(address_, grpc::InsecureChannelCredentials()));
  }

  void exchange() override {
    grpc::ClientContext context;
    rpc::Request request;
    rpc::Reply reply;
    request.mutable_bytes()->assign(kRequestSize, '\0');
    const grpc::Status status = stub_->Exchange(&context, request, &reply);
    if (!status.ok()) fail("gRPC: " + status.error_message());
    if (reply.bytes().size() != kReplySize) fail("gRPC: a reply of another length");
  }

 private:
  std::string address_;
  Child server_;
  std::unique_ptr<rpc::Bench::Stub> stub_;
};

}  // namespace

std::unique_ptr<Contender> start_grpc(const Folder &folder) {
  return std::make_unique<Grpc>(folder);
}

}  // namespace olt::bench
