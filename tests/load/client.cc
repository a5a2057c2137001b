#include "tests/load/client.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "platform/olthost.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 40ms;
constexpr size_t kLongestList = 4094;
/// Indices of kinds.
constexpr size_t kDebugValues = 0;
constexpr size_t kUsers = 1;
/// As many as the box has room for besides its predefined ones.
constexpr uint32_t kMaxUsers = 24;

std::string read_listing(const char (&name)[32]) {
  return read_file(std::string(std::getenv("OLT_RUN_DIR")) + "/" +
                   std::string(name, strnlen(name, sizeof name)));
}

/// Whether a listing of VLANs has one row, and which.
bool shows_only(const std::string &listing, uint32_t vlan, const std::string &description) {
  std::string row = "\n" + std::to_string(vlan) + "  -             -               ";
  return holds(listing, "\n1 VLAN\n") && listing.ends_with(row + description + "\n");
}

}  // namespace

Client::Client(Scene &scene, uint32_t id)
    : scene_(scene), tally_(scene.tallies[id]), id_(id), nodes_(kLongestList) {
  for (size_t i = 0; i < nodes_.size(); ++i) {
    nodes_[i].next = i + 1 < nodes_.size() ? &nodes_[i + 1] : nullptr;
    nodes_[i].vlan_first = static_cast<uint16_t>(own_vlan());
  }
}

void Client::run() {
  while (!scene_.over) {
    size_t kind = round_ % kKinds.size();
    go_round(kind == kUsers && id_ >= kMaxUsers ? kDebugValues : kind);
    ++round_;
    std::this_thread::sleep_for(kPause);
  }
}

// While the box is restarted, only the documented failures of an exchange are checked.
void Client::go_round(size_t kind) {
  bool (Client::*const kRounds[])() = {&Client::debug_values,    &Client::users,
                                       &Client::described_vlans, &Client::long_vlan_lists,
                                       &Client::onu_rows,        &Client::listings};
  uint32_t before = scene_.epoch;
  met_no_box_ = false;
  bool right = (this->*kRounds[kind])();
  bool undisturbed = before == scene_.epoch && before % 2 == 0;
  if (right) {
    ++tally_.rounds;
    ++tally_.of_kind[kind];
  } else if (met_no_box_ && !undisturbed) {
    ++tally_.absences;
  } else if (undisturbed || met_no_box_) {
    if (tally_.wrong++ == 0) {
      std::strncpy(tally_.complaint, problem_.c_str(), sizeof tally_.complaint - 1);
    }
  }
}

bool Client::succeeded(const char *what, int32_t result) {
  int32_t transport = result & static_cast<int32_t>(0xffff0000);
  met_no_box_ = transport == OLT_TRANSPORT_NO_MODULE || transport == OLT_TRANSPORT_LOST;
  tally_.exchanges += transport == 0 ? 1 : 0;
  if (result == 0) return true;
  problem_ = "client " + std::to_string(id_) + ": " + what + " gave " + std::to_string(result);
  // Any other transport result is always wrong.
  if (transport != 0 && !met_no_box_) {
    met_no_box_ = true;
    if (tally_.wrong++ == 0) {
      std::strncpy(tally_.complaint, problem_.c_str(), sizeof tally_.complaint - 1);
    }
  }
  return false;
}

bool Client::check(const char *what, bool as_expected) {
  if (!as_expected) problem_ = "client " + std::to_string(id_) + ": " + what;
  return as_expected;
}

std::string Client::own_text() const {
  return "client-" + std::to_string(id_) + "-" + std::to_string(round_);
}

bool Client::debug_values() {
  olt_debug_value written = {1, id_, id_ << 20 | (round_ & 0xfffff)};
  olt_debug_value read = {0, id_, 0};
  return succeeded("writing a debug value", process_debug_value(&written)) &&
         succeeded("reading a debug value", process_debug_value(&read)) &&
         check("another one's debug value", read.debug_value == written.debug_value);
}

bool Client::users() {
  std::string name = "user-" + std::to_string(id_);
  std::string password = own_text();
  uint32_t level_a = 0;
  uint32_t level_b = 0;
  return succeeded("adding a user", add_user_level(name.c_str(), password.c_str(), id_, round_)) &&
         succeeded("looking up a user",
                   get_user_level(name.c_str(), password.c_str(), &level_a, &level_b)) &&
         check("another one's levels", level_a == id_ && level_b == round_) &&
         succeeded("deleting a user", delete_user_level(name.c_str()));
}

bool Client::described_vlans() {
  olt_vlan_list one{};
  one.head = nodes_.data();
  one.count = 1;
  own_text().copy(nodes_[0].vlan_descr, sizeof nodes_[0].vlan_descr - 1);
  nodes_[0].vlan_descr[own_text().size()] = '\0';
  char name[32];
  if (!succeeded("adding a VLAN", add_vlan_list(&one)) ||
      !succeeded("describing a VLAN", add_vlan_descr_list(&one)) ||
      !succeeded("listing a description",
                 get_vlan_information_file_bydescprtion(own_text().c_str(), name))) {
    return false;
  }
  return check("another one's VLAN", shows_only(read_listing(name), own_vlan(), own_text()));
}

bool Client::long_vlan_lists() {
  if (!described_vlans()) return false;
  olt_vlan_list all{};
  all.head = nodes_.data();
  all.count = static_cast<int32_t>(nodes_.size());
  char name[32];
  if (!succeeded("listing many VLANs", get_vlan_information_file_bylist(&all, name))) return false;
  return check("not the VLANs of the list", shows_only(read_listing(name), own_vlan(), own_text()));
}

bool Client::onu_rows() {
  olt_ont_target target{};
  target.target[0] = 1;
  target.target[1] = 1 + id_ / 64;
  target.target[2] = 1 + id_ % 64;
  target.target_kind = 1;
  target.reserved_10[0] = 1;
  olt_uni_downrate rates = {{id_, round_, id_ ^ round_}};
  olt_uni_downrate read{};
  return succeeded("setting a rate", set_ont_port_downrate(&target, &rates)) &&
         succeeded("reading a row", process_onu_portdownrate(&target, &read)) &&
         check("another one's row", std::memcmp(&read, &rates, sizeof rates) == 0);
}

bool Client::listings() {
  char name[32];
  if (!succeeded("listing", get_system_basicinfofile(name))) return false;
  std::string text = read_listing(name);
  return check("no whole listing",
               text.starts_with("Basic information of olt\n") && text.ends_with('\n'));
}

}  // namespace olt::test
