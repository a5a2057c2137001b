/// A small simulated box without sockets, in a folder of its own, with its rules about answers.
#ifndef OLT_FUZZ_SMALL_BOX_H
#define OLT_FUZZ_SMALL_BOX_H

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "box/simulator.h"
#include "tests/support/folder.h"

namespace olt::fuzz {

using Json = nlohmann::ordered_json;

/// A row of the box's table of messages.
struct MessageRow {
  uint32_t module;
  uint32_t type;
  std::string name;
  box::Lengths request;
};

/// Two PON interfaces with three ONUs each.
const box::Topology &small_topology();

/// All messages that the box serves, by type, then by module.
const std::vector<MessageRow> &message_rows();

class SmallBox {
 public:
  /// Starts from the factory, or from what was written before.
  enum class Start { kFresh, kGoOn };

  explicit SmallBox(Start start = Start::kFresh);

  /// Writes a state file for the next box.
  static void write_state(const char *name, std::string_view content);
  static std::string read_state(const char *name);

  /// Sends a request, and requires of the answer what holds for every answer.
  box::Answer ask(uint32_t module, uint32_t type, std::span<const uint8_t> request);
  /// A command to the control module; its JSON reply.
  Json command(std::string_view text);

  void advance(std::chrono::seconds time) { now_ += time; }
  /// Keeps the running state, ends the box and starts it again.
  void restart();

  /// Requires the box's counters to be what was asked since the last fresh start.
  void require_counters();
  /// Requires that a box that starts from what this one has saved and kept, saves and keeps the
  /// same.
  void require_persistence();
  /// Requires the listings of this box to be texts, and removes them.
  static void require_listings();

 private:
  void start(bool fresh);
  static void require_answer(uint32_t module, uint32_t type, size_t length,
                             const box::Answer &answer);

  std::unique_ptr<box::Simulator> simulator_;
  TimePoint now_ = TimePoint(std::chrono::seconds(1'769'860'800));
  std::string trace_;
  box::MessageCounts asked_;
};

}  // namespace olt::fuzz

#endif
