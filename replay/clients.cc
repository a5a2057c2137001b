#include "replay/clients.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iterator>
#include <utility>

namespace olt::replay {

Clients::Clients(const Index &index) : index_(index), recorded_(index.processes().size()) {}

Index::Number Clients::take(uint32_t process, const RequestHash &request) {
  Client &client = client_of(process);
  if (client.recorded == kNobody) return choose_process(client, request);
  Index::Number number = step(client.next, request);
  if (number == Index::kNone && !client.has_strayed) number = exchange_threads(client, request);
  if (number == Index::kNone && !client.has_strayed) number = choose_process(client, request);
  if (number == Index::kNone && !client.has_strayed) number = exchange_processes(client, request);
  client.has_strayed = client.has_strayed || number == Index::kNone;
  return number;
}

Index::Number Clients::expected(uint32_t process) const {
  auto client = clients_.find(process);
  if (client == clients_.end()) return Index::kNone;
  for (Index::Number next : client->second.next)
    if (next != Index::kNone) return next;
  return Index::kNone;
}

bool Clients::follows(uint32_t process) const {
  auto client = clients_.find(process);
  return client != clients_.end() && client->second.recorded != kNobody;
}

Clients::Client &Clients::client_of(uint32_t process) {
  auto known = clients_.find(process);
  if (known != clients_.end() && !has_ended(process, known->second)) return known->second;
  release_ended();
  Client &client = clients_[process];
  client.process = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
  return client;
}

/// Others may follow what they followed.
void Clients::release_ended() {
  for (auto client = clients_.begin(); client != clients_.end();) {
    auto next = std::next(client);
    if (has_ended(client->first, client->second)) {
      if (client->second.recorded != kNobody)
        recorded_[client->second.recorded].is_followed = false;
      clients_.erase(client);
    }
    client = next;
  }
}

bool Clients::has_ended(uint32_t process, const Client &client) {
  if (!client.process.is_open()) {
    return process != 0 && kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
  }
  pollfd watched = {.fd = client.process.get(), .events = POLLIN, .revents = 0};
  return poll(&watched, 1, 0) > 0;
}

/// Past the request where it is the next one of a thread.
Index::Number Clients::step(Threads &next, const RequestHash &request) const {
  for (Index::Number &of_thread : next) {
    for (Index::Number one = of_thread; one != Index::kNone; one = index_.next_in_thread(one)) {
      if (index_.is_request(one, request)) {
        of_thread = index_.next_in_thread(one);
        return one;
      }
      if (!index_.may_be_absent(one)) break;
    }
  }
  return Index::kNone;
}

/// Has the client follow another process: one in which what the client sent before is in order,
/// too.
Index::Number Clients::choose_process(Client &client, const RequestHash &request) {
  size_t best = kNobody;
  Threads best_next;
  Index::Number answer = Index::kNone;
  for (size_t i = 0; i < recorded_.size(); ++i) {
    if (recorded_[i].is_followed) continue;
    if (best != kNobody && recorded_[i].followed >= recorded_[best].followed) continue;
    Threads next = index_.processes()[i];
    if (!pass_what_was_sent(client, next)) continue;
    Index::Number number = step(next, request);
    if (number == Index::kNone) continue;
    best = i;
    best_next = std::move(next);
    answer = number;
  }
  if (best == kNobody) return Index::kNone;
  if (client.recorded != kNobody) recorded_[client.recorded].is_followed = false;
  client.recorded = best;
  client.next = std::move(best_next);
  ++recorded_[best].followed;
  recorded_[best].is_followed = true;
  return answer;
}

/// Two clients may have begun alike: each follows what the other one is to follow.
Index::Number Clients::exchange_processes(Client &client, const RequestHash &request) {
  for (auto &[process, other] : clients_) {
    if (&other == &client || other.recorded == kNobody) continue;
    Threads next = index_.processes()[other.recorded];
    Threads next_of_other = index_.processes()[client.recorded];
    if (!pass_what_was_sent(client, next) || !pass_what_was_sent(other, next_of_other)) continue;
    Index::Number number = step(next, request);
    if (number == Index::kNone) continue;
    std::swap(client.recorded, other.recorded);
    client.next = std::move(next);
    other.next = std::move(next_of_other);
    return number;
  }
  return Index::kNone;
}

/// Two threads may begin alike: what was taken for the one may have been the other.
Index::Number Clients::exchange_threads(Client &client, const RequestHash &request) const {
  const Threads &first = index_.processes()[client.recorded];
  for (size_t i = 0; i < first.size(); ++i) {
    for (size_t j = 0; j < first.size(); ++j) {
      if (i == j || client.next[i] == first[i]) continue;
      Index::Number of_i = first[i];
      Index::Number of_j = first[j];
      if (!pass(first[i], client.next[i], of_j) || !pass(first[j], client.next[j], of_i)) continue;
      if (of_j == Index::kNone || !index_.is_request(of_j, request)) continue;
      client.next[i] = of_i;
      client.next[j] = index_.next_in_thread(of_j);
      return of_j;
    }
  }
  return Index::kNone;
}

bool Clients::pass_what_was_sent(const Client &client, Threads &next) const {
  if (client.recorded == kNobody) return true;
  const Threads &first = index_.processes()[client.recorded];
  for (size_t i = 0; i < first.size(); ++i) {
    if (client.next[i] == first[i]) continue;
    if (i >= next.size() || !pass(first[i], client.next[i], next[i])) return false;
  }
  return true;
}

/// Moves the other thread past as many requests, which must be equal ones.
bool Clients::pass(Index::Number from, Index::Number end, Index::Number &other) const {
  for (; from != end; from = index_.next_in_thread(from)) {
    if (other == Index::kNone || !index_.are_equal(from, other)) return false;
    other = index_.next_in_thread(other);
  }
  return true;
}

}  // namespace olt::replay
