/// One client of the load test, and what all of them share.
#ifndef OLT_TESTS_LOAD_CLIENT_H
#define OLT_TESTS_LOAD_CLIENT_H

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "oltmgmt.h"

namespace olt::test {

inline constexpr uint32_t kClients = 128;

inline constexpr std::array<std::string_view, 6> kKinds = {
    "debug values", "users", "described VLANs", "long VLAN lists", "ONU rows", "listings"};

/// Written by one client, read by all.
struct Tally {
  std::atomic<uint64_t> rounds{0};     ///< without an error
  std::atomic<uint64_t> exchanges{0};  ///< that brought an answer
  std::atomic<uint64_t> absences{0};   ///< exchanges that failed while there was no box
  std::atomic<uint64_t> wrong{0};
  std::array<std::atomic<uint64_t>, kKinds.size()> of_kind{};  ///< rounds of each kind
  char complaint[200] = "";                                    ///< the first one
};

/// In memory that all processes share.
struct Scene {
  /// Odd while the box is being restarted.
  std::atomic<uint32_t> epoch{0};
  std::atomic<bool> over{false};
  std::array<Tally, kClients> tallies{};
};

/// Sets and reads values that are its own, and finds them in the answers.
class Client {
 public:
  Client(Scene &scene, uint32_t id);
  Client(const Client &) = delete;
  Client &operator=(const Client &) = delete;

  /// Runs until the scene is over.
  void run();

 private:
  void go_round(size_t kind);
  bool debug_values();
  bool users();
  bool described_vlans();
  bool long_vlan_lists();
  bool onu_rows();
  bool listings();

  bool succeeded(const char *what, int32_t result);
  bool check(const char *what, bool as_expected);
  std::string own_text() const;
  uint32_t own_vlan() const { return 1000 + id_; }

  Scene &scene_;
  Tally &tally_;
  const uint32_t id_;
  uint32_t round_ = 0;
  bool met_no_box_ = false;
  std::string problem_;  ///< of this round
  std::vector<olt_vlan_node> nodes_;
};

}  // namespace olt::test

#endif
