// sd-bus between two processes, and through a bus daemon of our own.
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <optional>

#include "bench/rivals/rivals.h"

namespace olt::bench {

namespace {

constexpr const char *kService = "olt.Bench";
constexpr const char *kPath = "/olt/bench";
constexpr const char *kInterface = "olt.Bench";
constexpr sd_id128_t kServerId{.bytes = {1}};  // any but zero

void require_bus(int result, const char *what) {
  if (result < 0) fail(std::string(what) + ": " + std::strerror(-result));
}

int answer(sd_bus_message *request, void * /*context*/, sd_bus_error * /*error*/) {
  static constexpr Reply kReply{};
  const void *bytes = nullptr;
  std::size_t length = 0;
  sd_bus_message *reply = nullptr;
  int result = sd_bus_message_read_array(request, 'y', &bytes, &length);
  if (result >= 0 && length != kRequestSize) result = -EINVAL;
  if (result >= 0) result = sd_bus_message_new_method_return(request, &reply);
  if (result >= 0) result = sd_bus_message_append_array(reply, 'y', kReply.data(), kReply.size());
  if (result >= 0) result = sd_bus_message_send(reply);
  sd_bus_message_unref(reply);
  return result;
}

int dispatch(sd_bus_message *request, void *context, sd_bus_error *error) {
  return sd_bus_message_is_method_call(request, kInterface, "Exchange") > 0
             ? answer(request, context, error)
             : 0;
}

void serve(sd_bus *bus) {
  require_bus(sd_bus_add_object(bus, nullptr, kPath, dispatch, nullptr), "sd_bus_add_object");
  for (;;) {
    const int result = sd_bus_process(bus, nullptr);
    require_bus(result, "sd_bus_process");
    if (result == 0) require_bus(sd_bus_wait(bus, UINT64_MAX), "sd_bus_wait");
  }
}

/// A bus connection without more set than its address or socket.
sd_bus *new_bus() {
  sd_bus *bus = nullptr;
  require_bus(sd_bus_new(&bus), "sd_bus_new");
  return bus;
}

class SdBus : public Contender {
 public:
  ~SdBus() override { sd_bus_flush_close_unref(bus_); }

  void exchange() override {
    const Request request{};
    sd_bus_message *call = nullptr;
    sd_bus_message *reply = nullptr;
    const void *bytes = nullptr;
    std::size_t length = 0;
    require_bus(
        sd_bus_message_new_method_call(bus_, &call, destination_, kPath, kInterface, "Exchange"),
        "sd_bus_message_new_method_call");
    require_bus(sd_bus_message_append_array(call, 'y', request.data(), request.size()),
                "sd_bus_message_append_array");
    require_bus(sd_bus_call(bus_, call, 0, nullptr, &reply), "sd_bus_call");
    require_bus(sd_bus_message_read_array(reply, 'y', &bytes, &length),
                "sd_bus_message_read_array");
    if (length != kReplySize) fail("sd_bus_call: a reply of another length");
    sd_bus_message_unref(call);
    sd_bus_message_unref(reply);
  }

 protected:
  explicit SdBus(const char *destination) : destination_(destination) {}

  sd_bus *bus_ = nullptr;

 private:
  const char *destination_;
};

class Direct : public SdBus {
 public:
  Direct() : SdBus(nullptr) {
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_.data()) == 0, "socketpair");
    server_.emplace([this](int ready) { serve_end(ready); });
    close(ends_[1]);
  }

  std::string name() const override { return "sd-bus, direct"; }

  void connect() override {
    bus_ = new_bus();
    require_bus(sd_bus_set_fd(bus_, ends_[0], ends_[0]), "sd_bus_set_fd");
    require_bus(sd_bus_start(bus_), "sd_bus_start");
  }

 private:
  void serve_end(int ready) {
    close(ends_[0]);
    sd_bus *bus = new_bus();
    require_bus(sd_bus_set_fd(bus, ends_[1], ends_[1]), "sd_bus_set_fd");
    require_bus(sd_bus_set_server(bus, 1, kServerId), "sd_bus_set_server");
    require_bus(sd_bus_start(bus), "sd_bus_start");
    say_ready(ready);
    serve(bus);
  }

  std::array<int, 2> ends_{};
  std::optional<Child> server_;
};

sd_bus *join(const std::string &address) {
  sd_bus *bus = new_bus();
  require_bus(sd_bus_set_address(bus, address.c_str()), "sd_bus_set_address");
  require_bus(sd_bus_set_bus_client(bus, 1), "sd_bus_set_bus_client");
  require_bus(sd_bus_start(bus), "sd_bus_start");
  return bus;
}

std::vector<std::string> daemon_command(const Folder &folder) {
  const std::string configuration = folder / "bus.conf";
  write_file(configuration,
             "<busconfig><type>session</type><listen>unix:path=" + folder / "bus" +
                 "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                 "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/>"
                 "</policy></busconfig>");
  return {"dbus-daemon", "--nofork", "--print-address", "--config-file=" + configuration};
}

class ThroughDaemon : public SdBus {
 public:
  explicit ThroughDaemon(const Folder &folder)
      : SdBus(kService), daemon_(daemon_command(folder)), server_([this](int ready) {
          sd_bus *bus = join(daemon_.first_line());
          require_bus(sd_bus_request_name(bus, kService, 0), "sd_bus_request_name");
          say_ready(ready);
          serve(bus);
        }) {}

  std::string name() const override { return "sd-bus, dbus-daemon"; }

  void connect() override { bus_ = join(daemon_.first_line()); }

 private:
  Child daemon_;
  Child server_;
};

}  // namespace

std::unique_ptr<Contender> start_sd_bus_direct() {
  return std::make_unique<Direct>();
}

std::unique_ptr<Contender> start_sd_bus_daemon(const Folder &folder) {
  return std::make_unique<ThroughDaemon>(folder);
}

}  // namespace olt::bench
