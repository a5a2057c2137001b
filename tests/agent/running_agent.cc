#include "tests/agent/running_agent.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr const char *kRoot = ".1.3.6.1.4.1.32473";
/// Far longer than anything here takes, even on a busy machine.
constexpr auto kLongestWait = 30s;

bool waits_until(const std::function<bool()> &condition) {
  const auto deadline = steady_clock::now() + kLongestWait;
  while (!condition()) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(10ms);
  }
  return true;
}

/// A UDP port that nobody has at the moment.
unsigned free_port() {
  int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in address{.sin_family = AF_INET, .sin_addr = {htonl(INADDR_LOOPBACK)}};
  socklen_t length = sizeof address;
  bool is_bound = bind(socket, reinterpret_cast<sockaddr *>(&address), length) == 0 &&
                  getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length) == 0;
  close(socket);
  if (!is_bound) throw std::runtime_error("no UDP port");
  return ntohs(address.sin_port);
}

pid_t start(const std::vector<std::string> &command, const std::vector<std::string> &environment,
            const std::string &log) {
  pid_t child = fork();
  if (child != 0) return child;
  int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  execute(command, environment);
}

size_t occurrences(const std::string &text, const std::string &part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// Octets without quotes and blanks.
std::string plain(std::string value) {
  bool is_octets = value.starts_with('"');
  std::erase_if(value, [](char c) { return c == '"' || c == ' '; });
  if (is_octets) {
    for (char &c : value) c = static_cast<char>(tolower(c));
  }
  return value;
}

}  // namespace

RunningAgent::RunningAgent() : port_(free_port()), trap_port_(free_port()) {
  mkdir((folder_ / "persistent").c_str(), 0700);
  std::ostringstream configuration;
  configuration << "agentAddress udp:127.0.0.1:" << port_
                << "\nmaster agentx\nagentXSocket unix:" << folder_ / "agentx"
                << "\nrwcommunity olt 127.0.0.1\n"
                << "view all included .1\nrwcommunity inside 127.0.0.1 -V all olt\n"
                << "createUser reader SHA read-the-olt AES hide-the-olt\nrouser reader priv\n"
                << "trap2sink 127.0.0.1:" << trap_port_ << " public\n";
  folder_.write("snmpd.conf", configuration.str());
}

RunningAgent::~RunningAgent() {
  for (pid_t child : {agent_, snmpd_, snmptrapd_}) {
    if (child > 0) end_child(child, SIGKILL);
  }
}

void RunningAgent::start_box(unsigned onus_per_interface) {
  const std::string topology =
      folder_.write("topology.json", R"({"pon":{"interfaces":2,"onus_per_interface":)" +
                                         std::to_string(onus_per_interface) + "}}");
  box_.start({"--topology", topology});
}

std::string RunningAgent::address() const {
  return "127.0.0.1:" + std::to_string(port_);
}

void RunningAgent::start_snmpd() {
  const std::string log = folder_ / "snmpd.log";
  const size_t before = occurrences(read_file(log), "NET-SNMP version");
  snmpd_ = start({SNMPD, "-f", "-Lo"},
                 {"SNMPCONFPATH=" + folder_.path(),
                  "SNMP_PERSISTENT_DIR=" + (folder_ / "persistent"), "MIBS="},
                 log);
  bool serves =
      waits_until([&] { return occurrences(read_file(log), "NET-SNMP version") > before; });
  if (!serves) throw std::runtime_error("snmpd: " + read_file(log));
}

void RunningAgent::kill_snmpd() {
  end_child(snmpd_, SIGKILL);
}

void RunningAgent::start_agent(const std::vector<std::string> &options) {
  std::vector<std::string> command = {OLTSNMP, "--agentx", folder_ / "agentx", "--box",
                                      box_.run_dir()};
  command.insert(command.end(), options.begin(), options.end());
  size_t before = occurrences(log(), "subagent connected");
  agent_ = start(command, {}, folder_ / "oltsnmp.log");
  // Its counters are registered last.
  bool serves = waits_for("subagent connected", before + 1) &&
                waits_until([this] { return get(".2.7.0") == "0"; });
  if (!serves) throw std::runtime_error("oltsnmp: " + log());
}

int RunningAgent::end_agent(int signal) {
  return end_child(agent_, signal);
}

std::string RunningAgent::log() const {
  return read_file(folder_ / "oltsnmp.log");
}

bool RunningAgent::waits_for(const std::string &text, size_t count) const {
  return waits_until([&] { return occurrences(log(), text) >= count; });
}

Finished RunningAgent::snmp(const std::string &tool, const std::vector<std::string> &options,
                            const std::vector<std::string> &names) const {
  std::vector<std::string> command = {tool, "-v2c", "-c", "olt", "-Oqnx", "-t3", "-r0"};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(address());
  for (const std::string &name : names) {
    bool is_below_root = name.empty() || name.starts_with('.');
    command.push_back(is_below_root ? kRoot + name : name);
  }
  return run(command, {"SNMPCONFPATH=" + (folder_ / "none"),
                       "MIBS=", "SNMP_PERSISTENT_DIR=" + (folder_ / "persistent")});
}

std::string RunningAgent::get(const std::string &name) const {
  Finished got = snmp("snmpget", {"-Ov"}, {name});
  std::string text = got.status == 0 ? got.output : got.errors;
  while (text.ends_with('\n')) text.pop_back();
  return plain(text);
}

void RunningAgent::start_snmptrapd() {
  // Its variables in one line: "OID = TYPE: VALUE", with tabs between them.
  const std::string configuration =
      folder_.write("snmptrapd.conf", "authCommunity log public\nformat2 %v\\n\n");
  snmptrapd_ = start({SNMPTRAPD, "-f", "-C", "-c", configuration, "-Lo", "-On", "-m", "",
                      "udp:127.0.0.1:" + std::to_string(trap_port_)},
                     {"SNMP_PERSISTENT_DIR=" + (folder_ / "persistent"), "MIBS="},
                     folder_ / "notifications");
  if (!waits_until([this] { return !read_file(folder_ / "notifications").empty(); })) {
    throw std::runtime_error("snmptrapd does not start");
  }
}

std::vector<std::string> RunningAgent::notifications() const {
  static const std::regex kNotification(
      R"(= OID: \.1\.3\.6\.1\.4\.1\.32473\.0\.(\d+)\t\.1\.3\.6\.1\.4\.1\.32473(\S+) = \w+: (\d+))");
  std::vector<std::string> found;
  const std::string text = read_file(folder_ / "notifications");
  for (std::sregex_iterator one(text.begin(), text.end(), kNotification), end; one != end; ++one) {
    found.push_back((*one)[1].str() + " " + (*one)[2].str() + " = " + (*one)[3].str());
  }
  return found;
}

std::vector<std::string> RunningAgent::wait_for_notifications(size_t count) const {
  waits_until([&] {
    return occurrences(read_file(folder_ / "notifications"), "OID: .1.3.6.1.4.1.32473.0.") >= count;
  });
  return notifications();
}

Cells RunningAgent::walk(const std::string &name) const {
  Finished walked = snmp("snmpbulkwalk", {"-Cr30"}, {name});
  if (walked.status != 0) throw std::runtime_error("snmpbulkwalk: " + walked.errors);
  Cells cells;
  std::istringstream lines(walked.output);
  std::string cell;
  std::string value;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(".1.")) {
      value += line;
    } else {
      size_t blank = line.find(' ');
      cell = line.substr(1, blank - 1);
      value = line.substr(blank + 1);
    }
    cells[cell] = plain(value);
  }
  return cells;
}

}  // namespace olt::test
