// oltsnmp in Prometheus: the shipped configuration, the distribution's generator, exporter and
// server.

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "base/descriptor.h"
#include "tests/agent/running_agent.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using std::chrono::steady_clock;

sockaddr_in local(unsigned port) {
  return {.sin_family = AF_INET,
          .sin_port = htons(static_cast<uint16_t>(port)),
          .sin_addr = {htonl(INADDR_LOOPBACK)}};
}

/// A TCP port that nobody has at the moment.
unsigned free_tcp_port() {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = local(0);
  socklen_t length = sizeof address;
  if (bind(socket.get(), reinterpret_cast<sockaddr *>(&address), length) != 0 ||
      getsockname(socket.get(), reinterpret_cast<sockaddr *>(&address), &length) != 0) {
    throw std::runtime_error("no TCP port");
  }
  return ntohs(address.sin_port);
}

/// The body of the answer; empty when there is none.
std::string http_get(unsigned port, const std::string &path) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = local(port);
  if (connect(socket.get(), reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) return "";
  const std::string request = "GET " + path + " HTTP/1.0\r\nHost: localhost\r\n\r\n";
  if (send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) < 0) return "";
  std::string answer;
  char buffer[4096];
  ssize_t count = 0;
  while ((count = read(socket.get(), buffer, sizeof buffer)) > 0) {
    answer.append(buffer, static_cast<size_t>(count));
  }
  size_t end = answer.find("\r\n\r\n");
  return end == std::string::npos ? "" : answer.substr(end + 4);
}

/// A server that ends with the test.
class Server {
 public:
  Server(std::vector<std::string> command, const std::string &log) : child_(fork()) {
    if (child_ != 0) return;
    int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    execute(command, {});
  }
  Server(const Server &) = delete;
  Server &operator=(const Server &) = delete;
  ~Server() {
    if (child_ > 0) end_child(child_, SIGKILL);
  }

 private:
  pid_t child_;
};

void replace(std::string &text, const std::string &part, const std::string &by) {
  size_t at = text.find(part);
  if (at == std::string::npos) throw std::runtime_error("no " + part);
  text.replace(at, part.size(), by);
}

/// What Prometheus answers to a query that has one result; empty until it has one.
std::string figure(unsigned port, const std::string &query) {
  json answer = json::parse(http_get(port, "/api/v1/query?query=" + query), nullptr, false);
  if (answer.is_discarded() || answer.value("status", "") != "success") return "";
  const json &results = answer["data"]["result"];
  return results.size() == 1 ? results[0]["value"][1].get<std::string>() : "";
}

TEST(Prometheus, HasTheFiguresOfTheModules) {
  RunningAgent running;
  running.start_box();
  running.start_snmpd();
  running.start_agent();
  for (const std::vector<std::string> &call :
       {std::vector<std::string>{"set_olt_auth_mode", "1", "2", "mac"},
        {"set_port_enable", "1", "3", "off"}}) {
    EXPECT_EQ(running.box().oltctl(call).status, 0);
  }

  Folder folder;
  folder.write("OLTMGMT-MIB.txt", read_file(MIB_MODULE));
  std::string generator = read_file(PACKAGED "/generator.yml");
  replace(generator, "public", "olt");
  folder.write("generator.yml", generator);
  Finished generated =
      run({"/bin/sh", "-c", "cd \"$1\" && exec \"$2\" --fail-on-parse-errors generate -o snmp.yml",
           "sh", folder.path(), GENERATOR},
          {"MIBDIRS=" BASE_MIBS ":" + folder.path(), "SNMP_PERSISTENT_DIR=" + folder.path()});
  ASSERT_EQ(generated.status, 0) << generated.output << generated.errors;

  unsigned exporter_port = free_tcp_port();
  unsigned port = free_tcp_port();
  const std::string address = "127.0.0.1:";
  std::string configuration = read_file(PACKAGED "/prometheus.yml");
  replace(configuration, "192.0.2.7:161", running.address());
  replace(configuration, "127.0.0.1:9116", address + std::to_string(exporter_port));
  replace(configuration, "30s", "1s");
  replace(configuration, "20s", "1s");
  Server exporter({EXPORTER, "--config.file=" + (folder / "snmp.yml"),
                   "--web.listen-address=" + address + std::to_string(exporter_port)},
                  folder / "exporter.log");
  Server server({PROMETHEUS, "--config.file=" + folder.write("prometheus.yml", configuration),
                 "--storage.tsdb.path=" + (folder / "data"),
                 "--web.listen-address=" + address + std::to_string(port)},
                folder / "prometheus.log");

  const std::vector<std::pair<std::string, std::string>> kFigures = {
      {"count(oltOnuState==1)", "3"},
      {"oltPonOnusBlocked%7BoltPonSlot=%221%22,oltPonInterface=%222%22%7D", "3"},
      {"oltBasicPortLinkSpeed%7BoltBasicPortSlot=%221%22,oltBasicPortPort=%221%22%7D", "1000"},
      {"oltBasicPortLinkSpeed%7BoltBasicPortSlot=%221%22,oltBasicPortPort=%223%22%7D", "0"},
  };
  for (const auto &[query, expected] : kFigures) {
    const auto deadline = steady_clock::now() + 40s;
    while (figure(port, query).empty()) {
      ASSERT_LT(steady_clock::now(), deadline)
          << query << read_file(folder / "exporter.log") << read_file(folder / "prometheus.log");
      std::this_thread::sleep_for(100ms);
    }
    EXPECT_EQ(figure(port, query), expected) << query;
  }
}

}  // namespace

}  // namespace olt::test
