/// A capture on the disk, written by a thread of its own.
#ifndef OLT_CAPTURE_CAPTURE_FILE_H
#define OLT_CAPTURE_CAPTURE_FILE_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/descriptor.h"
#include "base/text.h"
#include "capture/writer.h"

namespace olt::capture {

struct CaptureFileOptions {
  static constexpr uint64_t kMinLimit = 1'048'576;

  std::string path;
  /// Bytes that the capture may take, at least kMinLimit; 0: any. When a file reaches half of it,
  /// the file is renamed to PATH.old, and the next one begins.
  uint64_t limit = 0;
  /// A folder to copy listings into; empty: none.
  std::string listings;
  bool with_secrets = false;
  /// Called with one line when the path is taken and a number was added to the name, when the
  /// capture ends early, and for the first listing that cannot be copied; from any thread.
  std::function<void(std::string_view line)> report;
};

/// Neither a slow disk nor a failure holds up who adds exchanges: what the disk does not take in
/// time is counted as lost, and a failure ends the capture. What the file holds then is whole.
class CaptureFile {
 public:
  CaptureFile(const std::string &program, CaptureFileOptions options);
  CaptureFile(const CaptureFile &) = delete;
  CaptureFile &operator=(const CaptureFile &) = delete;
  /// Writes what waits.
  ~CaptureFile();

  /// From one thread.
  /// @param program that made the exchange
  /// @param folder where listings without a path are
  void add(const WrittenExchange &exchange, const std::string &program, const std::string &folder);

 private:
  struct Listing {
    Descriptor file;
    std::string kept;  ///< the path of its copy
  };
  /// What waits to be written.
  struct Batch {
    Bytes bytes;
    std::vector<size_t> turns;  ///< places in the bytes where a file begins
    std::vector<Listing> listings;

    bool is_empty() const { return bytes.empty() && listings.empty(); }
  };

  bool create();
  bool create_first();
  void open_listing(const WrittenExchange &exchange, const std::string &folder);
  void run();
  void write_batches();
  void write(Batch &batch);
  bool write(ByteView bytes);
  bool turn_over();
  void end(const std::string &place, int error);
  void report(const std::string &place, int error, const char *effect);
  void report_listing(const std::string &path, int error);

  const CaptureFileOptions options_;
  Writer writer_;
  uint64_t file_bytes_ = 0;  ///< of the file that exchanges are added to

  Descriptor file_;
  std::string path_;
  uint64_t written_ = 0;  ///< bytes of the file
  std::atomic<bool> has_ended_ = false;
  std::atomic<bool> has_reported_ = false;  ///< a listing

  std::mutex mutex_;  ///< of what follows
  std::condition_variable wake_;
  Batch waiting_;
  bool stops_ = false;
  std::thread thread_;
};

}  // namespace olt::capture

#endif
