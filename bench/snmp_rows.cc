// Walks columns of a table by row, 150 rows in each request, and prints how many cells there are.
// usage: snmp_rows ADDRESS ENTRY COLUMN...
//
// net-snmp's tools would spend much of the measured time on taking apart and printing each cell.

// The headers of net-snmp need this order.
#include <net-snmp/net-snmp-config.h>
//
#include <net-snmp/net-snmp-includes.h>
//
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr long kRows = 150;
constexpr long kMicroseconds = 5'000'000;

using Oid = std::vector<oid>;

Oid name_of(const netsnmp_variable_list &variable) {
  return {variable.name, variable.name + variable.name_length};
}

Oid parsed(const std::string &text) {
  oid name[MAX_OID_LEN];
  size_t length = MAX_OID_LEN;
  if (read_objid(text.c_str(), name, &length) == 0) {
    snmp_perror("snmp_rows");
    std::exit(2);
  }
  return {name, name + length};
}

netsnmp_session *open_session(std::string address) {
  std::string community = "olt";
  netsnmp_session wanted;
  snmp_sess_init(&wanted);
  wanted.version = SNMP_VERSION_2c;
  wanted.peername = address.data();
  wanted.community = reinterpret_cast<u_char *>(community.data());
  wanted.community_len = community.size();
  wanted.timeout = kMicroseconds;
  wanted.retries = 0;
  return snmp_open(&wanted);
}

/// The rows after `last`, which becomes the last of them. @return how many; -1 after an error line
long next_rows(netsnmp_session *session, const Oid &column, std::vector<Oid> &last) {
  netsnmp_pdu *request = snmp_pdu_create(SNMP_MSG_GETBULK);
  request->non_repeaters = 0;
  request->max_repetitions = kRows;
  for (const Oid &name : last) snmp_add_null_var(request, name.data(), name.size());
  netsnmp_pdu *answer = nullptr;
  if (snmp_synch_response(session, request, &answer) != STAT_SUCCESS) {
    snmp_sess_perror("snmp_rows", session);
    return -1;
  }
  if (answer->errstat != SNMP_ERR_NOERROR) {
    static_cast<void>(
        std::fprintf(stderr, "snmp_rows: %s\n", snmp_errstring(static_cast<int>(answer->errstat))));
    snmp_free_pdu(answer);
    return -1;
  }
  long rows = 0;
  for (const netsnmp_variable_list *at = answer->variables; at != nullptr; ++rows) {
    // At the end of the table, the other columns hold rows of the next one.
    if (netsnmp_oid_is_subtree(column.data(), column.size(), at->name, at->name_length) != 0) break;
    std::vector<Oid> row;
    for (; at != nullptr && row.size() < last.size(); at = at->next_variable) {
      row.push_back(name_of(*at));
    }
    if (row.size() < last.size()) break;
    last = std::move(row);
  }
  snmp_free_pdu(answer);
  return rows;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 4) {
    static_cast<void>(std::fputs("usage: snmp_rows ADDRESS ENTRY COLUMN...\n", stderr));
    return 2;
  }
  init_snmp("snmp_rows");
  std::vector<Oid> last;
  for (int i = 3; i < argc; ++i) last.push_back(parsed(std::string(argv[2]) + "." + argv[i]));
  const Oid column = last.front();
  netsnmp_session *session = open_session(argv[1]);
  if (session == nullptr) {
    snmp_perror("snmp_rows");
    return 1;
  }
  long cells = 0;
  long rows = kRows;
  while (rows == kRows) {
    rows = next_rows(session, column, last);
    if (rows < 0) return 1;
    cells += rows * static_cast<long>(last.size());
  }
  std::printf("%ld\n", cells);
  snmp_close(session);
  return 0;
}
