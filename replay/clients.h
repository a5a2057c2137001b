/// Clients that repeat what was recorded, each that of one process.
#ifndef OLT_REPLAY_CLIENTS_H
#define OLT_REPLAY_CLIENTS_H

#include <cstdint>
#include <map>
#include <vector>

#include "base/descriptor.h"
#include "replay/index.h"

namespace olt::replay {

/// A client is a process. It follows a recorded process that no other client follows now: one that
/// was followed least often before, and of these the first that begins with its requests. As long
/// as its requests have fitted several, the next one may still show that it is another of them. A
/// request is in order when it is the next one of any thread of the recorded process.
class Clients {
 public:
  explicit Clients(const Index &index);

  /// The exchange that answers the client; kNone when its request is out of order.
  Index::Number take(uint32_t process, const RequestHash &request);

  /// What is next for the client; kNone when nothing is.
  Index::Number expected(uint32_t process) const;
  bool follows(uint32_t process) const;

 private:
  static constexpr size_t kNobody = SIZE_MAX;

  struct Client {
    Descriptor process;               ///< becomes readable when the process ends
    size_t recorded = kNobody;        ///< the process that it follows
    std::vector<Index::Number> next;  ///< of each thread
    bool has_strayed = false;
  };
  struct Recorded {
    uint32_t followed = 0;  ///< how often
    bool is_followed = false;
  };

  Client &client_of(uint32_t process);
  void release_ended();
  static bool has_ended(uint32_t process, const Client &client);

  /// Where each thread of a recorded process is.
  using Threads = std::vector<Index::Number>;

  Index::Number step(Threads &next, const RequestHash &request) const;
  Index::Number choose_process(Client &client, const RequestHash &request);
  Index::Number exchange_processes(Client &client, const RequestHash &request);
  Index::Number exchange_threads(Client &client, const RequestHash &request) const;
  bool pass_what_was_sent(const Client &client, Threads &next) const;
  bool pass(Index::Number from, Index::Number end, Index::Number &other) const;

  const Index &index_;
  std::vector<Recorded> recorded_;
  std::map<uint32_t, Client> clients_;
};

}  // namespace olt::replay

#endif
