/// What the tests of the box share: private folders, and a box without sockets.
#ifndef OLT_TESTS_BOX_SUPPORT_H
#define OLT_TESTS_BOX_SUPPORT_H

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "box/families.h"
#include "box/simulator.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"
#include "tests/support/wire_names.h"

namespace olt::test {

/// A simulated box in private folders. Its clock stands at 2026-01-31 12:00:00 UTC until it is
/// advanced.
class TestBox {
 public:
  TestBox();

  /// Ends the box and starts it again in the same folders.
  void restart();
  void end() { simulator_.reset(); }
  void advance(std::chrono::seconds time) { now_ += time; }

  /// Requests without a module go to the main module.
  box::Answer ask(Module module, uint32_t type, const Bytes &request = {});
  box::Answer ask(uint32_t type, const Bytes &request = {});
  /// The status alone.
  uint32_t status(Module module, uint32_t type, const Bytes &request = {});
  uint32_t status(uint32_t type, const Bytes &request = {});
  /// The reply to a request that must succeed.
  Bytes reply(Module module, uint32_t type, const Bytes &request = {});
  Bytes reply(uint32_t type, const Bytes &request = {});
  /// The JSON answer to a control command.
  std::string command(std::string_view json);
  /// The content of the listing whose name is at the offset of the reply.
  std::string listing(const Bytes &reply, size_t offset) const;
  std::string running_config();
  std::string basic_info();

  void keep() { simulator_->keep(); }

  /// The readable form of a state file, "saved" or "running".
  std::string state(std::string_view name) const;
  /// Writes a state file from its readable form, with the text, which must occur in it, replaced.
  void damage_state(std::string_view name, std::string_view text, std::string_view replacement);

  box::Options options;
  bool traced = true;
  std::vector<std::string> trace;
  Folder folder;

 private:
  void start();

  TimePoint now_ = TimePoint(std::chrono::seconds(1'769'860'800));
  std::unique_ptr<box::Simulator> simulator_;
};

/// The families of the box, in private folders, without a box that serves them.
struct Families {
  explicit Families(const Folder &folder)
      : directory(folder / "state", std::chrono::milliseconds(0)),
        state(topology, TimePoint()),
        hardware(topology, directory, box::Listings(folder / "run", std::nullopt, 0),
                 [] { return TimePoint(); }) {
    hardware.set_families(make_families(hardware, state));
    hardware.start(box::Misfits::kRefuse);
  }

  box::Topology topology;
  box::StateDirectory directory;
  box::SharedState state;
  box::Hardware hardware;
};

Bytes words(std::initializer_list<uint32_t> values);

/// Copies the field to its offset.
void put(Bytes &bytes, size_t offset, const Bytes &field);

/// Names an Ethernet port in words 0 and 1, and sets fields of its record.
Bytes port_record(uint32_t number, std::initializer_list<std::pair<size_t, Bytes>> fields = {});

}  // namespace olt::test

#endif
