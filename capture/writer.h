/// Writes captures; docs/capture.md has the format.
#ifndef OLT_CAPTURE_WRITER_H
#define OLT_CAPTURE_WRITER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "base/text.h"
#include "capture/trace/packets.h"
#include "catalog/catalog.h"

namespace olt::capture {

/// Both records, and what the header of each packet says. The writer sets lost and interface.
using WrittenExchange = ::exchange;

/// The bytes of a capture of several processes, one file after the other.
class Writer {
 public:
  /// @param program that writes the capture
  Writer(const std::string &program, bool with_secrets);

  /// Appends what begins a file.
  void begin(Bytes &file);

  /// Appends an exchange and, before the first one of its process in the file, who that is. What
  /// would make the bytes longer than max is left out instead, and counted as lost by the next
  /// exchange. When there is no memory, throws std::bad_alloc; the bytes are whole then, too.
  /// @param program that made the exchange
  void add(WrittenExchange exchange, const std::string &program, Bytes &file,
           size_t max = SIZE_MAX);

  /// How many bytes add() appends at most.
  static size_t max_size(const WrittenExchange &exchange);

  uint32_t exchanges() const { return exchanges_; }
  uint32_t lost() const { return lost_; }

 private:
  uint32_t interface_of(uint32_t process, const std::string &program, Bytes &file);

  const std::string program_;
  const bool with_secrets_;
  std::map<std::pair<uint32_t, std::string>, uint32_t> interfaces_;  ///< of the file
  uint32_t interface_count_ = 0;
  uint32_t exchanges_ = 0;
  uint32_t lost_ = 0;       ///< in all
  uint32_t just_lost_ = 0;  ///< since the last one that was added
};

/// Masks secrets in a block of a capture that a writer has written.
void mask_block(std::span<uint8_t> block, std::span<const catalog::WireSecret> secrets);

}  // namespace olt::capture

#endif
