/// The five platform calls, for tests: they answer as scripted and record every call.
///
/// Each thread has its own platform. Requests are copied when they are sent. A reply ends right
/// before inaccessible memory and cannot be read after its release. A ___MALLOC block starts with
/// known bytes, has guards on both sides and cannot be accessed after its release. Every call sets
/// errno to a meaningless value.
#ifndef OLT_TESTS_LIBRARY_SCRIPTED_PLATFORM_H
#define OLT_TESTS_LIBRARY_SCRIPTED_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

#include "tests/library/guarded_memory.h"

namespace olt::test {

/// How one exchange is answered.
struct Answer {
  int32_t result = 0;
  uint16_t status = 0;
  bool writes_status = true;
  bool writes_reply = true;
  const uint8_t *reply = nullptr;
  uint16_t reply_length = 0;
  /// Whether the reported reply length is 0, whatever the reply.
  bool hides_reply_length = false;
  bool reply_is_readable = true;
  /// Address of the reply modulo 4; -1: its last byte is right before an inaccessible page.
  int reply_remainder = -1;
};

enum class EventKind : uint8_t { kExchange, kReplyReleased, kAllocated, kReleased, kLogged };
enum class ReplyArguments : uint8_t { kAllNull, kAllGiven, kMixed };

/// One platform call. Members that its kind does not use are 0.
struct Event {
  EventKind kind;

  uint32_t type;
  uint32_t module;
  const void *request;
  const uint8_t *request_bytes;
  uint32_t request_length;
  ReplyArguments reply_arguments;
  bool reply_was_cleared;
  uint16_t initial_status;
  uint32_t no_reply;
  uint32_t timeout;

  /// kExchange: returned; kReplyReleased: passed in.
  uint32_t handle;

  uint32_t size;
  void *block;
  bool block_was_intact;
  char tag[64];
  int line;
  int level;
  char message[64];
};

class ScriptedPlatform {
 public:
  /// The platform of the calling thread until it is destroyed.
  ScriptedPlatform();
  ~ScriptedPlatform();
  ScriptedPlatform(const ScriptedPlatform &) = delete;
  ScriptedPlatform &operator=(const ScriptedPlatform &) = delete;

  /// Adds the answer to the next exchange that has none yet. The reply bytes must stay valid until
  /// then. Further exchanges get the last answer again; without any answer, all succeed.
  void answer(const Answer &answer);

  /// Makes the n-th allocation fail, counted from 1, and all later ones if lasting.
  void fail_allocation(unsigned n, bool lasting = false);

  size_t event_count() const;
  const Event &event(size_t index) const;

  /// Whether nothing was written around the blocks that are not released yet.
  bool blocks_intact() const;

  /// Describes what the platform has at the address; null if nothing.
  const char *describe(const void *address) const;

  int32_t exchange(uint32_t message_type, uint32_t module, const void *request,
                   uint32_t request_length, void **reply, uint16_t *reply_length,
                   uint32_t *reply_handle, uint16_t *status, uint32_t no_reply, uint32_t timeout);
  void release_reply(uint32_t handle);
  void *allocate(uint32_t size, const char *tag, int line);
  void release(void *block, const char *tag, int line);
  void log(int level, const char *tag, int line, const char *message);

  struct Notebook;

 private:
  static constexpr size_t kMost = 4;

  Event &note(EventKind kind);
  const uint8_t *keep(const void *bytes, size_t size);
  void hand_out(const Answer &answer, void **reply, uint16_t *reply_length, uint32_t *reply_handle);

  ScriptedPlatform *previous_;
  Notebook *notebook_;
  Answer answers_[kMost] = {};
  size_t answer_count_ = 0;
  size_t exchange_count_ = 0;
  GuardedMemory replies_[kMost];
  GuardedMemory blocks_[kMost];
  bool released_[kMost] = {};
  unsigned allocation_count_ = 0;
  unsigned failing_allocation_ = 0;
  bool lasting_failure_ = false;
};

}  // namespace olt::test

#endif
