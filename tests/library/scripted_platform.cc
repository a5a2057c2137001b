#include "tests/library/scripted_platform.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

#include "oltplatform.h"
#include "tests/library/byte_pattern.h"

namespace olt::test {

namespace {

constexpr uint32_t kFirstHandle = 0xC0DE0001;
constexpr size_t kBlockAlignment = 8;

thread_local ScriptedPlatform *t_platform = nullptr;

[[noreturn]] void give_up(const char *what) {
  static_cast<void>(fprintf(stderr, "scripted platform: %s\n", what));
  abort();
}

ScriptedPlatform &platform() {
  if (t_platform == nullptr) give_up("called on a thread that has none");
  return *t_platform;
}

void copy_text(char (&to)[64], const char *from) {
  static_cast<void>(snprintf(to, sizeof to, "%s", from == nullptr ? "(null)" : from));
}

}  // namespace

// In memory shared with forked children, so that a test sees what they did.
struct ScriptedPlatform::Notebook {
  size_t event_count;
  Event events[24];
  size_t kept;
  uint8_t requests[3 * 1024 * 1024];
};

ScriptedPlatform::ScriptedPlatform() : previous_(t_platform) {
  void *mapping = mmap(nullptr, sizeof(Notebook), PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping == MAP_FAILED) give_up("no memory for the notebook");
  notebook_ = static_cast<Notebook *>(mapping);
  t_platform = this;
}

ScriptedPlatform::~ScriptedPlatform() {
  munmap(notebook_, sizeof(Notebook));
  t_platform = previous_;
}

void ScriptedPlatform::answer(const Answer &answer) {
  if (answer_count_ == kMost) give_up("too many answers");
  answers_[answer_count_++] = answer;
}

void ScriptedPlatform::fail_allocation(unsigned n, bool lasting) {
  failing_allocation_ = n;
  lasting_failure_ = lasting;
}

size_t ScriptedPlatform::event_count() const {
  return notebook_->event_count;
}

const Event &ScriptedPlatform::event(size_t index) const {
  if (index >= notebook_->event_count) give_up("there are not that many events");
  return notebook_->events[index];
}

bool ScriptedPlatform::blocks_intact() const {
  for (size_t i = 0; i != kMost; ++i)
    if (blocks_[i].data() != nullptr && !released_[i] && !blocks_[i].intact()) return false;
  return true;
}

const char *ScriptedPlatform::describe(const void *address) const {
  for (size_t i = 0; i != kMost; ++i) {
    if (replies_[i].surrounds(address))
      return "a reply that must not be read now, or memory around a reply";
    if (blocks_[i].surrounds(address))
      return released_[i] ? "a released ___MALLOC block" : "memory around a ___MALLOC block";
  }
  return nullptr;
}

Event &ScriptedPlatform::note(EventKind kind) {
  if (notebook_->event_count == sizeof notebook_->events / sizeof notebook_->events[0])
    give_up("too many calls");
  errno = EINTR;
  Event &event = notebook_->events[notebook_->event_count++];
  event.kind = kind;
  return event;
}

const uint8_t *ScriptedPlatform::keep(const void *bytes, size_t size) {
  if (size > sizeof notebook_->requests - notebook_->kept) give_up("requests are too long");
  uint8_t *copy = notebook_->requests + notebook_->kept;
  if (size != 0) memcpy(copy, bytes, size);
  notebook_->kept += size;
  return copy;
}

void ScriptedPlatform::hand_out(const Answer &answer, void **reply, uint16_t *reply_length,
                                uint32_t *reply_handle) {
  GuardedMemory &memory = replies_[exchange_count_ - 1];
  bool exact = answer.reply_remainder < 0;
  memory.place(answer.reply_length, exact ? 1 : 4,
               exact ? 0 : static_cast<size_t>(answer.reply_remainder));
  if (answer.reply_length != 0) memcpy(memory.data(), answer.reply, answer.reply_length);
  if (!answer.reply_is_readable) memory.forbid();
  *reply = memory.data();
  *reply_length = answer.hides_reply_length ? uint16_t{0} : answer.reply_length;
  *reply_handle = kFirstHandle + static_cast<uint32_t>(exchange_count_ - 1);
}

int32_t ScriptedPlatform::exchange(uint32_t message_type, uint32_t module, const void *request,
                                   uint32_t request_length, void **reply, uint16_t *reply_length,
                                   uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                                   uint32_t timeout) {
  size_t last_answer = answer_count_ == 0 ? 0 : answer_count_ - 1;
  const Answer &answer = answers_[exchange_count_ < last_answer ? exchange_count_ : last_answer];
  ++exchange_count_;

  int given = (reply != nullptr) + (reply_length != nullptr) + (reply_handle != nullptr);
  Event &event = note(EventKind::kExchange);
  event.type = message_type;
  event.module = module;
  event.request = request;
  event.request_bytes = keep(request, request_length);
  event.request_length = request_length;
  event.reply_arguments = given == 0   ? ReplyArguments::kAllNull
                          : given == 3 ? ReplyArguments::kAllGiven
                                       : ReplyArguments::kMixed;
  event.no_reply = no_reply;
  event.timeout = timeout;
  event.initial_status = *status;
  if (given == 3) {
    event.reply_was_cleared = *reply == nullptr && *reply_length == 0 && *reply_handle == 0;
    if (answer.writes_reply && exchange_count_ <= kMost) {
      hand_out(answer, reply, reply_length, reply_handle);
      event.handle = *reply_handle;
    }
  }
  if (answer.writes_status) *status = answer.status;
  return answer.result;
}

void ScriptedPlatform::release_reply(uint32_t handle) {
  note(EventKind::kReplyReleased).handle = handle;
  uint32_t index = handle - kFirstHandle;
  if (index < kMost && replies_[index].data() != nullptr) replies_[index].forbid();
}

void *ScriptedPlatform::allocate(uint32_t size, const char *tag, int line) {
  Event &event = note(EventKind::kAllocated);
  event.size = size;
  copy_text(event.tag, tag);
  event.line = line;
  unsigned count = ++allocation_count_;
  if (count == failing_allocation_ || (lasting_failure_ && count > failing_allocation_))
    return nullptr;
  if (count > kMost) give_up("too many allocations");
  GuardedMemory &memory = blocks_[count - 1];
  memory.place(size, kBlockAlignment);
  for (size_t i = 0; i != size; ++i) memory.data()[i] = fresh_byte(i);
  event.block = memory.data();
  return memory.data();
}

void ScriptedPlatform::release(void *block, const char *tag, int line) {
  Event &event = note(EventKind::kReleased);
  event.block = block;
  copy_text(event.tag, tag);
  event.line = line;
  for (size_t i = 0; block != nullptr && i != kMost; ++i) {
    if (blocks_[i].data() != block || released_[i]) continue;
    event.block_was_intact = blocks_[i].intact();
    released_[i] = true;
    blocks_[i].forbid();
  }
}

void ScriptedPlatform::log(int level, const char *tag, int line, const char *message) {
  Event &event = note(EventKind::kLogged);
  event.level = level;
  copy_text(event.tag, tag);
  event.line = line;
  copy_text(event.message, message);
}

}  // namespace olt::test

int32_t platmsg_syn_result(uint32_t message_type, uint32_t module, void *request,
                           uint32_t request_length, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t timeout) {
  return olt::test::platform().exchange(message_type, module, request, request_length, reply,
                                        reply_length, reply_handle, status, no_reply, timeout);
}

void IPC_Free(uint32_t reply_handle) {
  olt::test::platform().release_reply(reply_handle);
}

void *___MALLOC(uint32_t size, const char *tag, int line) {
  return olt::test::platform().allocate(size, tag, line);
}

void ___FREE(void *block, const char *tag, int line) {
  olt::test::platform().release(block, tag, line);
}

void log_log(int level, const char *tag, int line, const char *message) {
  olt::test::platform().log(level, tag, line, message);
}
