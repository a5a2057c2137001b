/// Captures of the box's exchanges: one on the disk, and those that control commands ask for.
#ifndef OLT_BOX_WATCH_CAPTURES_H
#define OLT_BOX_WATCH_CAPTURES_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/text.h"
#include "box/state/archive.h"
#include "capture/capture_file.h"
#include "capture/writer.h"

namespace olt::box {

class Captures {
 public:
  /// @param listings the folder of the box's listings
  Captures(std::optional<capture::CaptureFileOptions> file, std::string listings);

  /// Calls the function now and whenever it changes whether anybody wants exchanges.
  void when_wanted(std::function<void(bool is_wanted)> tell);

  /// Adds an exchange, whose run and number are given here, to all captures that want it.
  /// @param connection that it came through
  void add(capture::WrittenExchange exchange, uint64_t connection);

  // Control commands. They throw BadInput.

  /// Begins a capture in memory, which ends when nobody has read it for ten minutes.
  void start(Archive &command, Archive &reply);
  /// Adds no more exchanges to it.
  void stop(Archive &command, Archive &reply);
  /// What follows in the capture that the request names; docs/box.md has the form. Nothing when
  /// there is no such capture. It is forgotten when all was read after its end.
  std::optional<Bytes> read(ByteView request);

 private:
  using Time = std::chrono::steady_clock::time_point;

  /// A capture in memory.
  struct Stream {
    uint32_t id;
    capture::Writer writer;
    uint64_t began;       ///< nanoseconds since 1970
    uint32_t module = 0;  ///< 0: any
    uint32_t type = 0;    ///< 0: any
    uint32_t count = 0;   ///< exchanges to capture; 0: any number
    bool has_ended = false;
    Bytes bytes;  ///< not read yet
    Time last_read;

    bool wants(const capture::WrittenExchange &exchange) const;
  };

  Stream *find(uint32_t id);
  void forget_unread(std::chrono::seconds age);
  void tell();
  const std::string &program_of(uint32_t process, uint64_t connection);

  const std::string listings_;
  std::optional<capture::CaptureFile> file_;
  std::list<Stream> streams_;
  uint32_t last_id_ = 0;
  std::function<void(bool)> tell_;
  const uint32_t run_;
  uint32_t exchanges_ = 0;
  std::map<uint64_t, std::string> programs_;  ///< by connection
};

}  // namespace olt::box

#endif
