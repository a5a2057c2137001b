/// What a test expects of a front end, and what became of it.
#ifndef OLT_MOCK_MOCK_H
#define OLT_MOCK_MOCK_H

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"
#include "mock/message.h"
#include "mock/recording.h"
#include "oltmock.h"

namespace olt::mock {

/// What is planned for a call.
struct Plan {
  int32_t result = 0;
  uint16_t status = 0;
  bool is_held = false;
};

}  // namespace olt::mock

struct olt_mock_expectation {
  const olt::catalog::Operation *operation;
  std::string text;  ///< "set_port_enable slot=1 port=3"
  olt::mock::Content content;
  uint32_t min = 1;
  uint32_t max = 1;
  bool is_in_order = true;
  std::vector<olt::Bytes> answers{};
  std::map<uint32_t, olt::mock::Plan> plans{};  ///< by number of the call

  uint32_t met = 0;
  uint32_t held = 0;           ///< calls that block now
  bool is_released = false;    ///< nothing is held any more
  bool awaits_second = false;  ///< the first module has accepted; the second one is asked next
};

namespace olt::mock {

using Expectation = olt_mock_expectation;

/// One request as the platform's caller gives it.
struct Request {
  const catalog::Operation *operation;  ///< null: that of none
  uint32_t message_type;
  uint32_t module;
  ByteView bytes;
  bool wants_reply;
};

struct FreeMemory {
  void operator()(void *memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<void, FreeMemory>;

/// What a call brings. Trivial, so that a report function may leave by longjmp.
struct Outcome {
  int32_t result = 0;
  bool has_status = false;
  uint16_t status = 0;
  uint16_t reply_length = 0;
  void *reply = nullptr;
  uint32_t reply_handle = 0;
  const char *report = nullptr;  ///< what is wrong; null: nothing
};

/// A report function and its context.
struct Reporter {
  olt_mock_report call = nullptr;
  void *context = nullptr;
};

/// Safe for threads. What tests call throws BadInput for a mistake, and then changes nothing; what
/// front ends call returns what is wrong, or null. Such texts live until finish().
class Mock {
 public:
  Expectation *expect(const char *name, const char *fields);
  Expectation *expect_bytes(const char *name, ByteView request);
  void answer(Expectation &expectation, const char *fields);
  void answer_bytes(Expectation &expectation, ByteView reply);
  void answer_from_capture(Expectation &expectation, const char *path);
  void replay_capture(const char *path);
  void set_times(Expectation &expectation, uint32_t min, uint32_t max);
  void set_any_order(Expectation &expectation);
  void plan_failure(Expectation &expectation, uint32_t call, int32_t result);
  void plan_refusal(Expectation &expectation, uint32_t call, uint16_t status);
  void hold(Expectation &expectation, uint32_t call);
  bool wait_until_held(Expectation &expectation, uint32_t milliseconds);
  void release(Expectation &expectation);
  void plan_failed_allocation(uint32_t allocation);

  Outcome exchange(const Request &request);
  const char *release_reply(uint32_t handle);
  void *allocate(uint32_t size, const char *tag, int line);
  const char *release_block(void *block, const char *tag, int line);

  void set_reporter(const Reporter &reporter);
  Reporter reporter();
  /// Keeps the text of a report and counts it.
  const char *report(std::string text);
  /// @return what is wrong, or null
  const char *finish(int &reports);

 private:
  struct Reply {
    Memory memory;
    std::string operation;
    bool counts = true;  ///< it is reported when it is not released
  };
  struct Block {
    std::string tag;
    int line;
    uint32_t size;
    bool counts = true;
  };

  Expectation *add(const catalog::Operation &operation, std::string text, Content content);
  std::shared_ptr<Expectation> find(const Request &request);
  std::string unexpected(const Request &request) const;
  std::string why_not(const Expectation &expectation, const Request &request) const;
  std::optional<Outcome> replay(const Request &request);
  void hand_out(const Request &request, const Bytes &reply, Outcome &outcome);
  void append_calls(std::string &text) const;
  void append_leaks(std::string &text);
  const char *keep_report(std::string text);

  std::mutex lock_;
  std::condition_variable changed_;
  std::vector<std::shared_ptr<Expectation>> expectations_;
  Recording recording_;
  size_t turn_ = 0;  ///< the first one in order that may still be met
  std::map<uint32_t, Reply> replies_;
  uint32_t last_handle_ = 0;
  std::map<void *, Block> blocks_;
  uint32_t allocations_ = 0;
  uint32_t failing_allocation_ = 0;  ///< 0: none
  Reporter reporter_;
  std::deque<std::string> texts_;  ///< of reports; one may be in use on each thread
  int reports_ = 0;
};

/// The one of the process.
Mock &mock();

}  // namespace olt::mock

#endif
