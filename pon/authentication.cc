#include <string.h>

#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/interface_request.h"

using namespace olt;

namespace {

constexpr uint8_t kAuthMode = 36;

/// Head of a request with entries; the entries follow it.
struct EntriesHead {
  uint32_t iface_a;
  uint32_t iface_b;
  uint32_t reserved_08[18];
};
static_assert(sizeof(EntriesHead) == 80 && sizeof(olt_auth_entry) == 44);

/// The arguments of an operation on a list.
struct Entries {
  uint32_t iface_a;
  uint32_t iface_b;
  int32_t count;
  const olt_auth_entry *first;

  /// A negative count wraps around; no entry is copied then.
  uint32_t size() const { return static_cast<uint32_t>(count) * uint32_t{sizeof *first}; }
  uint32_t length() const { return uint32_t{sizeof(EntriesHead)} + size(); }
};

/// Fills the block, sends it and releases it.
int32_t post_entries(const Entries &entries, void *block, const Call &call) {
  auto *head = static_cast<EntriesHead *>(block);
  head->iface_a = entries.iface_a;
  head->iface_b = entries.iface_b;
  if (entries.count > 0) memcpy(head + 1, entries.first, entries.size());
  return post_block(head, entries.length(), call);
}

/// The allocation is not checked.
[[gnu::noinline]] int32_t add_entries(Entries entries, const Call &call) {
  void *block = open_block(entries.length(), call);
  memset(block, 0, entries.length());
  return post_entries(entries, block, call);
}

/// The allocation is not checked, and the rest of the head is uninitialized.
[[gnu::noinline]] int32_t delete_entries(Entries entries, const Call &call) {
  return post_entries(entries, open_block(entries.length(), call), call);
}

}  // namespace

int32_t set_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t auth_mode) {
  return post_setting(iface_a, iface_b, auth_mode, {114, kAuthMode});
}

/// On failure, reports mode 0.
int32_t get_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t *auth_mode) {
  Reply reply;
  bool answered = ask_setting(iface_a, iface_b, 116, reply) == 0;
  *auth_mode = answered ? word_at(reply, kAuthMode) : 0;
  if (answered) release_reply(reply);
  return 0;
}

int32_t add_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                            const olt_auth_entry *entries) {
  return add_entries({iface_a, iface_b, count, entries}, OLT_CALL(112, 1897, 1917));
}

int32_t delete_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                               const olt_auth_entry *entries) {
  return delete_entries({iface_a, iface_b, count, entries}, OLT_CALL(113, 2046, 2064));
}

int32_t add_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                             const olt_auth_entry *entries) {
  return add_entries({iface_a, iface_b, count, entries}, OLT_CALL(110, 2096, 2116));
}

int32_t delete_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                const olt_auth_entry *entries) {
  return delete_entries({iface_a, iface_b, count, entries}, OLT_CALL(111, 2130, 2147));
}

int32_t add_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                 const olt_auth_entry *entries) {
  return add_entries({iface_a, iface_b, count, entries}, OLT_CALL(108, 2166, 2186));
}

int32_t delete_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                    const olt_auth_entry *entries) {
  return delete_entries({iface_a, iface_b, count, entries}, OLT_CALL(109, 2201, 2218));
}

int32_t delete_blocklist_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                             const olt_auth_entry *entries) {
  const Call &call = OLT_CALL(41, 2006, 2030);
  Entries list{iface_a, iface_b, count, entries};
  void *block = open_block(list.length(), call);
  return block == nullptr ? log_no_memory("less of memory", call) : post_entries(list, block, call);
}

int32_t show_autmacmode_file_by_interface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 115);
}

int32_t get_blocklist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 37);
}
