/// The exchanges of captures. What finds them is kept in memory, 32 bytes each; their records stay
/// in the files.
#ifndef OLT_REPLAY_INDEX_H
#define OLT_REPLAY_INDEX_H

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/descriptor.h"
#include "base/text.h"
#include "capture/exchanges.h"
#include "catalog/unspecified_bytes.h"

namespace olt::replay {

/// A request: its module, message type and bytes.
struct Request {
  uint32_t module;
  uint32_t message_type;
  ByteView bytes;
};

/// What requests are told apart by. 64 bits: that two different ones of a million have the same is
/// less likely than a flipped bit.
struct RequestHash {
  uint64_t plain;
  uint64_t masked;  ///< with its secrets masked, as the recorder would; 0 when none was recorded so
};

/// Which recorded exchange answers a request.
enum class Order {
  kInTurn,    ///< of equal requests each in turn, at the end the last again and again
  kLast,      ///< of equal requests the last
  kByClient,  ///< the next one of the recorded process that the client follows
};

class Index {
 public:
  /// A recorded exchange, numbered in the order of the requests' times.
  using Number = uint32_t;
  static constexpr Number kNone = UINT32_MAX;

  /// A recorded process: the first exchange of each of its threads.
  using Process = std::vector<Number>;

  /// Reads captures; keeps them open. Throws BadInput.
  Index(const std::vector<std::string> &paths, Order order);

  size_t size() const { return exchanges_.size(); }
  size_t served() const { return served_; }
  /// The modules that answered.
  const std::set<uint32_t> &modules() const { return modules_; }
  /// What the captures lack, a line each.
  const std::vector<std::string> &notes() const { return notes_; }

  /// Bytes that the operation does not specify do not count.
  RequestHash hash_of(const Request &request) const;

  /// The request's bytes as they are compared with recorded ones: unspecified ones are 0, secrets
  /// masked.
  Bytes comparable(const Request &request, bool is_masked) const;

  /// Whether the request was recorded.
  bool has(const RequestHash &request) const { return first_equal(request) != kNone; }
  /// The exchange that answers, in turn or as the last; kNone when the request was not recorded.
  Number take(const RequestHash &request);

  /// Those of Order::kByClient.
  std::span<const Process> processes() const { return processes_; }
  Number next_in_thread(Number number) const { return exchanges_[number].next_in_thread; }
  bool is_request(Number number, const RequestHash &request) const;
  bool are_equal(Number one, Number other) const {
    return exchanges_[one].hash == exchanges_[other].hash;
  }
  /// Whether the request never reached a module, so that a client may not send it at all.
  bool may_be_absent(Number number) const { return exchanges_[number].may_be_absent; }

  /// Different requests of the type to the module; of many, the first ones.
  std::span<const Number> requests_of(uint32_t module, uint32_t message_type) const;

  /// Throw BadInput when the file has changed.
  capture::Packet request(Number number) const;
  capture::Packet answer(Number number) const;

  void count_served(Number number);

 private:
  struct File {
    std::string path;
    Descriptor descriptor;
  };
  class Input;

  struct Exchange {
    uint64_t file : 14;
    uint64_t may_be_absent : 1;
    uint64_t is_served : 1;
    uint64_t place : 48;  ///< of the request
    uint64_t hash;
    uint32_t to_answer;  ///< bytes from the request to the answer
    Number next_equal = kNone;
    Number next_in_thread = kNone;
    Number turn = kNone;  ///< of the first of equal ones: which is to answer
  };
  static_assert(sizeof(Exchange) == 32);

  /// What is left out, and what is not as it was.
  struct Counts {
    size_t incomplete = 0, cut = 0, lost = 0, masked_replies = 0;
  };

  void open(const std::vector<std::string> &paths);
  void read();
  void add(size_t file, const capture::Exchange &exchange);
  void add_equal(Number number, const capture::Packet &request);
  void add_to_thread(Number number, const capture::Packet &request);
  uint64_t hash_as(const Request &request, bool is_masked) const;
  void grow_slots();
  uint32_t slot_content(Number number) const;
  size_t slot_of(uint64_t hash) const;
  bool is_first(Number number) const { return exchanges_[number].turn != kNone; }
  Number first_with(uint64_t hash) const;
  Number first_equal(const RequestHash &request) const;
  void note_what_is_left_out();
  capture::Packet packet(Number number, uint64_t place) const;

  const Order order_;
  const catalog::UnspecifiedBytes unspecified_;
  std::vector<File> files_;
  std::deque<Exchange> exchanges_;
  std::vector<uint32_t> slots_;  ///< a hash table of the first ones of equal requests
  size_t slots_in_use_ = 0;
  std::map<std::pair<uint32_t, uint32_t>, std::vector<Number>> by_type_;
  std::set<uint32_t> masked_types_;  ///< with requests of which secrets were masked
  std::vector<Process> processes_;
  std::map<std::pair<uint32_t, uint32_t>, size_t> process_places_;  ///< by run and process
  std::map<capture::Packet::Identity, Number> last_in_threads_;     ///< exchange 0 for all
  std::set<uint32_t> modules_;
  std::vector<std::string> notes_;
  Counts counts_;
  size_t served_ = 0;
};

}  // namespace olt::replay

#endif
