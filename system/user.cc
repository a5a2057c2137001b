#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_user) == 80 && offsetof(olt_user, user_name) == 8 &&
              offsetof(olt_user, user_password) == 40 && offsetof(olt_user, level_a) == 72);

namespace {

constexpr Route kUserTable = 10;
enum UserOp : uint32_t { kLookUp, kAdd, kDelete, kModify };

/// Copies at most 31 bytes of the text into a cleared field.
void put_text(char (&field)[32], const char *text) {
  memcpy(field, text, strnlen(text, sizeof field - 1));
}

/// Asks for an account. Other than elsewhere a failed exchange hides the status, and a status that
/// the platform does not write counts as a refusal.
int32_t ask(Route route, const olt_user *request, Reply &reply) {
  reply.status = 0xFFFF;
  int32_t result = request_with_reply(request, sizeof *request, route, reply);
  return result != 0 ? result : reply.status;
}

/// Copies name and password as long as they are: the reply's zero alone ends them, and they may
/// run over the fields behind.
void copy_texts(const Reply &reply, olt_user *user) {
  char *to = reinterpret_cast<char *>(user);
  const char *from = static_cast<const char *>(reply.data);
  strcpy(to + offsetof(olt_user, user_name), from + offsetof(olt_user, user_name));
  strcpy(to + offsetof(olt_user, user_password), from + offsetof(olt_user, user_password));
}

void copy_word(const Reply &reply, size_t offset, uint32_t *out) {
  memcpy(out, static_cast<const char *>(reply.data) + offset, sizeof *out);
}

void copy_levels(const Reply &reply, uint32_t *level_a, uint32_t *level_b) {
  copy_word(reply, offsetof(olt_user, level_a), level_a);
  copy_word(reply, offsetof(olt_user, level_b), level_b);
}

}  // namespace

int32_t get_user_level(const char *name, const char *password, uint32_t *level_a,
                       uint32_t *level_b) {
  olt_user user{.user_op = kLookUp};
  put_text(user.user_name, name);
  put_text(user.user_password, password);
  Reply reply;
  if (int32_t result = ask(kUserTable, &user, reply)) return result;
  copy_levels(reply, level_a, level_b);
  release_reply(reply);
  return 0;
}

int32_t add_user_level(const char *name, const char *password, uint32_t level_a, uint32_t level_b) {
  olt_user user{.user_op = kAdd, .level_a = level_a, .level_b = level_b};
  put_text(user.user_name, name);
  put_text(user.user_password, password);
  return post(kUserTable, user);
}

int32_t delete_user_level(const char *name) {
  olt_user user{.user_op = kDelete};
  put_text(user.user_name, name);
  return post(kUserTable, user);
}

int32_t modify_user_level(olt_user *user) {
  user->user_op = kModify;
  return post(kUserTable, *user);
}

int32_t get_system_next_user(olt_user *user) {
  user->user_op = kLookUp;
  Reply reply;
  if (int32_t result = ask(62, user, reply)) return result;
  copy_texts(reply, user);
  copy_word(reply, offsetof(olt_user, user_index), &user->user_index);
  copy_levels(reply, &user->level_a, &user->level_b);
  release_reply(reply);
  return 0;
}

int32_t get_system_user_byindex(olt_user *user) {
  Reply reply;
  if (int32_t result = ask(63, user, reply)) return result;
  copy_texts(reply, user);
  copy_levels(reply, &user->level_a, &user->level_b);
  release_reply(reply);
  return 0;
}
