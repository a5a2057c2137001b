/// Writes lines to a stream whose reader may be slow or absent.
#ifndef OLT_BASE_LINE_WRITER_H
#define OLT_BASE_LINE_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "base/descriptor.h"

namespace olt {

/// Writes whole lines without ever waiting for the reader. Lines that the stream cannot take, and
/// those beyond the rate, are left out and counted; the next line written is preceded by
/// "PROGRAM: 12 lines left out". Buffers one line at most.
class LineWriter {
 public:
  /// The caller keeps the descriptor. A rate of 0 means no limit.
  LineWriter(int stream, std::string program, uint32_t lines_per_second = 0,
             Clock clock = std::chrono::system_clock::now);
  LineWriter(const LineWriter &) = delete;
  LineWriter &operator=(const LineWriter &) = delete;
  /// Writes how many lines were left out since the last one.
  ~LineWriter();

  void write(std::string_view line);

 private:
  bool within_rate();
  void add_line(std::string_view line);
  bool flush();

  const Descriptor own_;  ///< the stream reopened as non-blocking; closed if that failed
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
