/// Lines to a stream that may be slow, or that nobody reads.
#ifndef OLT_BASE_LINE_WRITER_H
#define OLT_BASE_LINE_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "base/descriptor.h"

namespace olt {

/// Writes whole lines without ever waiting for the reader. Lines that the stream cannot take, and
/// those beyond the rate, are left out and counted; the next line that gets through is preceded by
/// "PROGRAM: 12 lines left out". Holds one line at most.
class LineWriter {
 public:
  /// The descriptor stays the caller's. A rate of 0 is no limit.
  LineWriter(int stream, std::string program, uint32_t lines_per_second = 0,
             Clock clock = std::chrono::system_clock::now);
  LineWriter(const LineWriter &) = delete;
  LineWriter &operator=(const LineWriter &) = delete;
  /// Says how many lines were left out since the last one.
  ~LineWriter();

  void write(std::string_view line);

 private:
  bool within_rate();
  void add_line(std::string_view line);
  bool flush();

  const Descriptor own_;  ///< the stream opened anew and non-blocking; closed when that fails
  const int stream_;
  const bool may_block_;
  const std::string program_;
  const uint32_t lines_per_second_;
  const Clock clock_;
  TimePoint second_;  ///< start of the second that is counted
  uint32_t lines_in_second_ = 0;
  std::string pending_;  ///< what the stream has not taken yet
  uint64_t left_out_ = 0;
};

}  // namespace olt

#endif
