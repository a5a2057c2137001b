/// liboltplatform: the five calls of oltplatform.h on a development host, and their control.
///
/// Requests travel over Unix stream sockets named module-N in a run directory. Front ends need
/// nothing from this header: they call liboltmgmt and link against liboltplatform. It is for
/// authors of modules (the serving side) and for tools that watch or redirect exchanges.
///
/// Environment:
///   OLT_RUN_DIR       run directory; default $XDG_RUNTIME_DIR/oltmgmt, else /run/oltmgmt
///   OLT_GROUP         a group whose members are accepted as peers, by name or number
///   OLT_ALLOC_DEBUG   1: ___MALLOC checks tags, double releases and overruns, and reports at exit
///   OLT_LOG           stderr (default), syslog or none: where log_log writes
#ifndef OLTHOST_H
#define OLTHOST_H

#include <stddef.h>
#include <stdint.h>

#include "oltplatform.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What platmsg_syn_result returns when an exchange fails. The lower 16 bits are zero, so that a
/// result OR-ed with a status word shows both.
enum olt_transport_result {
  OLT_TRANSPORT_OK = 0,
  OLT_TRANSPORT_TIMED_OUT = 0x00010000,  ///< no answer within the time-out
  OLT_TRANSPORT_NO_MODULE = 0x00020000,  ///< nothing serves the module
  OLT_TRANSPORT_LOST = 0x00030000,       ///< the module went away before it answered
  OLT_TRANSPORT_REFUSED = 0x00040000,    ///< one side runs as a user that the other does not accept
  OLT_TRANSPORT_GARBLED = 0x00050000,    ///< the answer is not a well-formed frame
  OLT_TRANSPORT_TOO_LONG = 0x00060000,   ///< request longer than OLT_REQUEST_LIMIT
  OLT_TRANSPORT_NO_RESOURCES = 0x00070000,  ///< out of memory, descriptors or reply handles
  OLT_TRANSPORT_BAD_CALL = 0x00080000       ///< a null pointer where one must be given
};

/// Longest request that is sent, in bytes. Far above what any operation builds.
#define OLT_REQUEST_LIMIT (16u * 1024u * 1024u)
/// Longest reply, in bytes: its length travels in 16 bits.
#define OLT_REPLY_LIMIT 65535u

/// One line for a transport result ("no answer within the time-out"); never null. Bits below 16
/// are ignored.
const char *olt_transport_text(int32_t result);

/// Writes the run directory that the environment selects into path.
/// @return 0, or -1 when it does not fit (path is then empty).
int olt_run_dir(char *path, size_t size);

/// One finished exchange, as its caller saw it. Pointers are valid during the call of the watcher.
struct olt_exchange {
  uint32_t module;
  uint32_t message_type;
  const void *request;
  uint32_t request_length;
  uint32_t no_reply;
  uint32_t timeout;       ///< seconds
  int32_t result;         ///< enum olt_transport_result
  uint16_t status;        ///< meaningful when result is 0
  uint16_t reply_length;  ///< 0 without a reply
  const void *reply;
  uint64_t elapsed_ns;
};

typedef void (*olt_watcher)(void *context, const struct olt_exchange *exchange);

/// Calls the watcher after every exchange of this process, on the thread that made it; null removes
/// it. Set it while no other thread is in an exchange.
void olt_watch_exchanges(olt_watcher watcher, void *context);

/// Releases the replies that this thread has received and that nobody has released. Some operations
/// of liboltmgmt never release theirs; a tool that makes many calls keeps its size by calling this
/// after each. Their handles are unknown afterwards.
/// @return how many there were
uint32_t olt_release_replies(void);

/// Returns a stream socket connected to the module, or -1 with errno (ECONNREFUSED or ENOENT:
/// nothing serves it).
typedef int (*olt_connector)(void *context, uint32_t module);

/// Obtains connections from the connector instead of the run directory; null restores the latter.
/// Peer credentials are still checked. Set it while no other thread is in an exchange.
void olt_connect_through(olt_connector connector, void *context);

// The serving side: a server calls one handler for each module.

typedef struct olt_server olt_server;

struct olt_request {
  uint32_t module;
  uint32_t message_type;
  const void *data;  ///< any alignment; valid during the handler's call
  uint32_t length;
  uint32_t no_reply;  ///< 1: only the status is sent back
  uint32_t process;   ///< the client's, when it connected; 0 when this system does not see it
};

enum olt_answer_action {
  OLT_ANSWER_SEND = 0,        ///< send status and reply, after delay_ms
  OLT_ANSWER_WITHHOLD = 1,    ///< never answer this request
  OLT_ANSWER_DISCONNECT = 2,  ///< close the connection instead, after delay_ms
};

struct olt_answer {
  uint16_t status;
  const void *reply;      ///< copied when the handler returns; ignored when no_reply is 1
  uint32_t reply_length;  ///< at most OLT_REPLY_LIMIT
  enum olt_answer_action action;
  uint32_t delay_ms;  ///< other connections are served meanwhile
};

/// Answers one request. The answer is zeroed beforehand: returning at once means status 0 and no
/// reply. Runs on the thread of olt_server_run, one call at a time.
typedef void (*olt_handler)(void *context, const struct olt_request *request,
                            struct olt_answer *answer);

struct olt_server_options {
  const char *run_dir;  ///< where the sockets go; null: none, only olt_server_connect reaches it
  const char *group;    ///< group that may connect, besides this user and root; null: none
  uint32_t stall_ms;    ///< a client that stops within a frame is dropped after this; 0: 10,000
  void (*on_event)(void *context, const char *line);  ///< called for each event; null: the log
  void *context;
  /// Maximum number of bytes for half-received requests over all connections, beyond 4 KiB each; a
  /// client that needs more is dropped. 0: 64 MiB.
  uint32_t pending_limit;
};

/// What has happened since the server was created.
struct olt_server_counters {
  uint64_t exchanges;
  uint64_t connections;
  uint64_t refused_peers;
  uint64_t broken_frames;       ///< framing that is not ours, or too long
  uint64_t stalled_clients;     ///< dropped for stopping within a frame
  uint64_t vanished_clients;    ///< gone in the middle of a frame or before their answer
  uint64_t over_limit_clients;  ///< dropped because of pending_limit
};

/// Creates a server. The run directory is created with mode 0700 (0750 with a group); an existing
/// one is used if it belongs to the user and is empty or closed to others. Only root and the user
/// may own, or be able to rename things in, a directory above it.
/// @param[out] error one line, when the result is null
olt_server *olt_server_create(const struct olt_server_options *options, char error[256]);

/// Serves a module, under the socket module-N with mode 0600 (0660 with a group). A socket left by
/// a process that died is taken over; one that is being served is not.
/// @return 0, or -1 and a line in error.
int olt_server_add(olt_server *server, uint32_t module, olt_handler handler, void *context,
                   char error[256]);

/// How an exchange ended for its server.
enum olt_served_end {
  OLT_SERVED_ANSWERED = 0,
  OLT_SERVED_WITHHELD = 1,      ///< never answered
  OLT_SERVED_DISCONNECTED = 2,  ///< the connection was closed instead
  OLT_SERVED_VANISHED = 3       ///< the client was gone before it had the answer
};

/// One exchange that is over, as its server saw it. Pointers are valid during the call of the
/// watcher.
struct olt_served_exchange {
  uint32_t module;
  uint32_t message_type;
  const void *request;
  uint32_t request_length;
  uint32_t no_reply;
  enum olt_served_end end;
  uint16_t status;        ///< meaningful when it was answered
  uint16_t reply_length;  ///< 0 without a reply
  const void *reply;
  uint64_t began_ns;  ///< since 1970, when the whole request was there
  uint64_t elapsed_ns;
  uint32_t process;     ///< the client's; 0 when it is unknown
  uint64_t connection;  ///< counts the server's connections
};

typedef void (*olt_server_watcher)(void *context, const struct olt_served_exchange *exchange);

/// Calls the watcher, on the thread of olt_server_run, after every exchange that begins from now
/// on; null removes it. While the server runs, only from its handlers and its watcher.
void olt_server_watch(olt_server *server, olt_server_watcher watcher, void *context);

/// Serves on the calling thread until olt_server_stop. @return 0, or -1 and a line in error.
int olt_server_run(olt_server *server, char error[256]);

/// Ends olt_server_run as soon as the current handler has returned. May be called from any thread
/// and from a signal handler.
void olt_server_stop(olt_server *server);

/// A new connection to one of the server's modules, in the form of an olt_connector; from any
/// thread.
int olt_server_connect(olt_server *server, uint32_t module);

/// Copies the counters; from any thread.
void olt_server_count(const olt_server *server, struct olt_server_counters *counters);

/// Closes all connections, removes the sockets and releases the server. Not while it runs.
void olt_server_destroy(olt_server *server);

#ifdef __cplusplus
}
#endif

#endif
