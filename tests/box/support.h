/// What the tests of the box share: private directories, literal bytes, a box without sockets.
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
#include "base/text.h"
#include "box/simulator.h"
#include "tests/support/folder.h"

namespace olt::tests {

using Bytes = std::vector<uint8_t>;

/// "01 00 ff" as bytes.
Bytes hex(std::string_view text);
/// So many zero bytes, with the given bytes laid over them at their offsets.
Bytes record(size_t size, std::initializer_list<std::pair<size_t, Bytes>> fields = {});
Bytes text(std::string_view characters);
/// A little-endian word.
Bytes word(uint32_t value);
/// So many bytes, each one more than the one before.
Bytes counting(size_t size, uint8_t from);
Bytes slice(const Bytes &bytes, size_t begin, size_t end);
std::string characters(const Bytes &bytes);

/// A simulated box in private directories. Its clock stands at 2026-01-31 12:00:00 UTC until it is
/// advanced.
class TestBox {
 public:
  TestBox();

  /// Ends the box and starts it anew in the same directories.
  void restart();
  void end() { simulator_.reset(); }
  void advance(std::chrono::seconds time) { now_ += time; }

  box::Answer ask(uint32_t module, uint32_t type, const Bytes &request = {});
  /// The status alone.
  uint32_t status(uint32_t module, uint32_t type, const Bytes &request = {});
  /// The reply to a request that must succeed.
  Bytes reply(uint32_t module, uint32_t type, const Bytes &request = {});
  /// The JSON answer to a control command.
  std::string command(std::string_view json);
  /// The content of the listing named in the 32 bytes at the offset of the reply.
  std::string listing(const Bytes &reply, size_t offset) const;

  void keep() { simulator_->keep(); }

  box::Options options;
  bool traced = true;
  std::vector<std::string> trace;
  Folder folder;

 private:
  void start();

  TimePoint now_ = TimePoint(std::chrono::seconds(1'769'860'800));
  std::unique_ptr<box::Simulator> simulator_;
};

}  // namespace olt::tests

#endif
