/// Reads captures; docs/capture.md has the format.
#ifndef OLT_CAPTURE_READER_H
#define OLT_CAPTURE_READER_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "base/bad_input.h"
#include "base/text.h"

namespace olt::capture {

/// A capture whose last block is cut. What stands before it is whole.
class CutShort : public BadInput {
 public:
  using BadInput::BadInput;
};

/// One of the two packets of an exchange.
struct Packet {
  uint64_t place = 0;  ///< of its header in the file
  bool is_answer = false;
  bool no_reply = false;   ///< none was wanted
  bool is_masked = false;  ///< each byte of a secret is '*'
  uint64_t time = 0;       ///< nanoseconds since 1970
  std::string program;     ///< empty when neither interface nor section names it
  uint32_t run = 0, process = 0, thread = 0, exchange = 0;
  uint32_t module = 0, message_type = 0;
  uint32_t timeout = 0;  ///< seconds
  uint32_t lost = 0;     ///< exchanges just before this one
  uint32_t result = 0;
  uint16_t status = 0;
  uint64_t duration = 0;       ///< nanoseconds
  uint32_t record_length = 0;  ///< before the record was cut
  Bytes record;

  using Identity = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>;
  Identity identity() const { return {run, process, thread, exchange}; }
};

/// Reads a pcapng file in order. Packets of other link types and blocks of other kinds are skipped.
class Reader {
 public:
  /// Fills the buffer, or as much of it as there are bytes. @return how many. May throw BadInput.
  using Source = std::function<size_t(uint8_t *buffer, size_t size)>;

  /// The name is for error lines.
  Reader(std::string name, Source source);

  /// Nothing at the end, and in an empty file, which a process leaves that is killed while it
  /// creates it. Throws BadInput with the place, CutShort where the last block is cut.
  std::optional<Packet> next();

 private:
  struct Interface {
    bool is_ours;
    uint64_t ticks_per_second;
    std::string program;
  };

  template <typename Failure = BadInput, typename... Args>
  [[noreturn]] void fail(const char *reason, Args... args) const;
  bool read_block();
  void read_whole(uint8_t *buffer, size_t size);
  bool skip(size_t size);
  void read_section();
  void add_interface();
  std::optional<Packet> packet() const;
  std::optional<Packet> packet_of(ByteView payload, uint64_t time,
                                  const std::string &program) const;
  uint64_t nanoseconds(const Interface &interface, uint64_t ticks) const;
  uint32_t word(size_t offset) const;

  std::string name_;
  Source source_;
  uint64_t place_ = 0;  ///< of the block
  uint64_t next_ = 0;   ///< of the one after it
  uint32_t type_ = 0;
  Bytes block_;
  std::string program_;
  std::vector<Interface> interfaces_;
  bool has_section_ = false;
  std::optional<uint64_t> foreign_;  ///< the place of the first packet that is not ours
  bool has_packet_ = false;
};

/// Throws BadInput.
Reader read_capture(const std::string &path);

/// Reads a packet again from an open file; its time and program stay empty. Its record was not cut
/// when the reader gave its place. Throws BadInput when the packet is no longer there.
Packet read_packet(const std::string &name, int file, uint64_t place);

}  // namespace olt::capture

#endif
