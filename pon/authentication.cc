#include <string.h>

#include "oltmgmt.h"
#include "oltplatform.h"
#include "transport/interface_request.h"
#include "transport/shapes.h"

using namespace olt;

namespace {

struct ModeRequest {
  uint32_t iface_a;
  uint32_t iface_b;
  uint32_t reserved_08[7];
  uint32_t auth_mode;
  uint32_t reserved_28[10];
};
static_assert(sizeof(ModeRequest) == 80 && sizeof(olt_auth_entry) == 44);

constexpr Range kAuthMode{36, 4};

/// What a request with entries begins with; the entries follow.
struct EntriesHead {
  uint32_t iface_a;
  uint32_t iface_b;
  uint32_t reserved_08[18];
};
static_assert(sizeof(EntriesHead) == 80);

/// A negative count wraps around, as no entry is copied then.
uint32_t length_with(int32_t count) {
  constexpr uint32_t kHead = sizeof(EntriesHead);
  constexpr uint32_t kEntry = sizeof(olt_auth_entry);
  return kHead + static_cast<uint32_t>(count) * kEntry;
}

/// Fills the block, sends it and releases it.
int32_t post_entries(uint32_t iface_a, uint32_t iface_b, int32_t count,
                     const olt_auth_entry *entries, EntriesHead *head, Route route, CallSite site) {
  head->iface_a = iface_a;
  head->iface_b = iface_b;
  if (count > 0) memcpy(head + 1, entries, static_cast<size_t>(count) * sizeof *entries);
  return post_block(head, length_with(count), route, site);
}

EntriesHead *open_entries(int32_t count, CallSite site) {
  return static_cast<EntriesHead *>(open_block(length_with(count), site));
}

/// The allocation is not tested.
[[gnu::noinline]] int32_t add_entries(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                      const olt_auth_entry *entries, Route route, CallSite site) {
  EntriesHead *head = open_entries(count, site);
  memset(head, 0, length_with(count));
  return post_entries(iface_a, iface_b, count, entries, head, route, site);
}

/// The allocation is not tested, and the head keeps what the allocator left in it.
[[gnu::noinline]] int32_t delete_entries(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                         const olt_auth_entry *entries, Route route,
                                         CallSite site) {
  return post_entries(iface_a, iface_b, count, entries, open_entries(count, site), route, site);
}

}  // namespace

int32_t set_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t auth_mode) {
  return post(114, ModeRequest{.iface_a = iface_a, .iface_b = iface_b, .auth_mode = auth_mode});
}

/// A failure is told as mode 0.
int32_t get_olt_auth_mode(uint32_t iface_a, uint32_t iface_b, uint32_t *auth_mode) {
  ModeRequest request{.iface_a = iface_a, .iface_b = iface_b};
  if (fetch_range(116, request, kAuthMode, auth_mode) != 0) *auth_mode = 0;
  return 0;
}

int32_t add_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                            const olt_auth_entry *entries) {
  return add_entries(iface_a, iface_b, count, entries, 112, {__func__, 1897, 1917});
}

int32_t delete_authallowed_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                               const olt_auth_entry *entries) {
  return delete_entries(iface_a, iface_b, count, entries, 113, {__func__, 2046, 2064});
}

int32_t add_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                             const olt_auth_entry *entries) {
  return add_entries(iface_a, iface_b, count, entries, 110, {__func__, 2096, 2116});
}

int32_t delete_authallowed_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                const olt_auth_entry *entries) {
  return delete_entries(iface_a, iface_b, count, entries, 111, {__func__, 2130, 2147});
}

int32_t add_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                 const olt_auth_entry *entries) {
  return add_entries(iface_a, iface_b, count, entries, 108, {__func__, 2166, 2186});
}

int32_t delete_authallowed_mac_loid(uint32_t iface_a, uint32_t iface_b, int32_t count,
                                    const olt_auth_entry *entries) {
  return delete_entries(iface_a, iface_b, count, entries, 109, {__func__, 2201, 2218});
}

int32_t delete_blocklist_mac(uint32_t iface_a, uint32_t iface_b, int32_t count,
                             const olt_auth_entry *entries) {
  CallSite site{__func__, 2006, 2030};
  EntriesHead *head = open_entries(count, site);
  if (head != nullptr) return post_entries(iface_a, iface_b, count, entries, head, 41, site);
  log_no_memory("less of memory", 2010, site);
  return -1;
}

int32_t show_autmacmode_file_by_interface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 115);
}

int32_t get_blocklist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 37);
}
