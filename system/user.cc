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

[[gnu::noinline]] olt_user compose(const char *name, const char *password, UserOp op) {
  olt_user user{.user_op = op};
  put_text(user.user_name, name);
  put_text(user.user_password, password);
  return user;
}

/// Requests an account. Unlike elsewhere, a failed exchange hides the status, and a status that the
/// platform does not set counts as a refusal.
int32_t ask_user(const olt_user *request, Route route, Reply &reply) {
  reply.status = 0xFFFF;
  int32_t result = request_with_reply(request, sizeof *request, route, reply);
  return result != 0 ? result : reply.status;
}

void copy_levels(const Reply &reply, uint32_t *level_a, uint32_t *level_b) {
  *level_a = word_at(reply, offsetof(olt_user, level_a));
  *level_b = word_at(reply, offsetof(olt_user, level_b));
}

/// Reads an account into the record that requests it; its table position is read only if index is
/// not null. Name and password are copied without a length check and may overrun the fields after
/// them.
int32_t fetch_user(olt_user *user, uint32_t *index, Route route) {
  Reply reply;
  if (int32_t result = ask_user(user, route, reply)) return result;
  char *to = reinterpret_cast<char *>(user);
  const char *from = static_cast<const char *>(reply.data);
  strcpy(to + offsetof(olt_user, user_name), from + offsetof(olt_user, user_name));
  strcpy(to + offsetof(olt_user, user_password), from + offsetof(olt_user, user_password));
  if (index != nullptr) *index = word_at(reply, offsetof(olt_user, user_index));
  copy_levels(reply, &user->level_a, &user->level_b);
  release_reply(reply);
  return 0;
}

}  // namespace

int32_t get_user_level(const char *name, const char *password, uint32_t *level_a,
                       uint32_t *level_b) {
  olt_user user = compose(name, password, kLookUp);
  Reply reply;
  if (int32_t result = ask_user(&user, kUserTable, reply)) return result;
  copy_levels(reply, level_a, level_b);
  release_reply(reply);
  return 0;
}

int32_t add_user_level(const char *name, const char *password, uint32_t level_a, uint32_t level_b) {
  olt_user user = compose(name, password, kAdd);
  user.level_a = level_a;
  user.level_b = level_b;
  return post(kUserTable, user);
}

int32_t delete_user_level(const char *name) {
  return post(kUserTable, compose(name, "", kDelete));
}

int32_t modify_user_level(olt_user *user) {
  user->user_op = kModify;
  return post(kUserTable, *user);
}

int32_t get_system_next_user(olt_user *user) {
  user->user_op = kLookUp;
  return fetch_user(user, &user->user_index, 62);
}

int32_t get_system_user_byindex(olt_user *user) {
  return fetch_user(user, nullptr, 63);
}
