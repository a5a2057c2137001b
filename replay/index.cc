#include "replay/index.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <queue>

#include "base/bad_input.h"
#include "capture/trace/secrets.h"
#include "platform/olthost.h"

namespace olt::replay {

namespace {

constexpr size_t kMaxFiles = 16'000;
constexpr unsigned kNumberBits = 24;
constexpr uint32_t kNumberMask = (uint32_t{1} << kNumberBits) - 1;
constexpr size_t kMaxExchanges = kNumberMask;  // so that no slot in use is as a free one
constexpr uint32_t kFreeSlot = UINT32_MAX;
constexpr uint64_t kMaxPlace = uint64_t{1} << 48;
constexpr size_t kMaxRequestsOfType = 512;
constexpr size_t kBuffers = size_t{1} << 20;  ///< those of all files together
constexpr size_t kSmallestBuffer = 4096;
constexpr size_t kLargestBuffer = size_t{1} << 16;

uint64_t mixed(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
  return hash ^ hash >> 32U;
}

uint64_t hash_bytes(uint64_t hash, ByteView bytes) {
  hash = mixed(hash, bytes.size());
  while (!bytes.empty()) {
    uint64_t word = 0;
    size_t count = std::min(bytes.size(), sizeof word);
    std::memcpy(&word, bytes.data(), count);
    hash = mixed(hash, word);
    bytes = bytes.subspan(count);
  }
  return mixed(hash, 0);
}

uint64_t hash_request(const Request &request, bool is_masked) {
  uint64_t head = static_cast<uint64_t>(request.module) << 32U | request.message_type;
  return hash_bytes(mixed(is_masked ? 1 : 0, head), request.bytes);
}

bool was_never_sent(uint32_t result) {
  return result == OLT_TRANSPORT_NO_MODULE || result == OLT_TRANSPORT_TOO_LONG ||
         result == OLT_TRANSPORT_NO_RESOURCES || result == OLT_TRANSPORT_BAD_CALL;
}

bool is_cut(const capture::Packet &packet) {
  return packet.record.size() < packet.record_length;
}

Descriptor open_capture(const std::string &path) {
  // A pipe without a writer would block.
  Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat found {};
  if (!file.is_open() || fstat(file.get(), &found) != 0) {
    throw BadInput(fmt::format("{}: cannot be read: {}", printable(path), std::strerror(errno)));
  }
  if (!S_ISREG(found.st_mode)) {
    throw BadInput(
        fmt::format("{}: is no regular file; expected a capture of libolttrace", printable(path)));
  }
  return file;
}

}  // namespace

/// A capture while it is read.
class Index::Input {
 public:
  Input(const File &file, size_t buffer_size)
      : path_(file.path),
        descriptor_(file.descriptor.get()),
        buffer_(buffer_size),
        reader_(file.path, [this](uint8_t *to, size_t size) { return read(to, size); }),
        exchanges_(reader_) {}
  Input(const Input &) = delete;
  Input &operator=(const Input &) = delete;

  /// Nothing at the end. Throws BadInput.
  std::optional<capture::Exchange> next() { return exchanges_.next(); }

 private:
  size_t read(uint8_t *to, size_t size) {
    size_t done = 0;
    while (done < size && fill()) {
      size_t count = std::min(size - done, filled_ - taken_);
      std::copy_n(buffer_.data() + taken_, count, to + done);
      taken_ += count;
      done += count;
    }
    return done;
  }

  /// @return false at the end
  bool fill() {
    if (taken_ < filled_) return true;
    ssize_t count = ::read(descriptor_, buffer_.data(), buffer_.size());
    if (count < 0) {
      throw BadInput(fmt::format("{}: cannot be read: {}", printable(path_), std::strerror(errno)));
    }
    taken_ = 0;
    filled_ = static_cast<size_t>(count);
    return count > 0;
  }

  const std::string &path_;
  const int descriptor_;
  Bytes buffer_;
  size_t taken_ = 0;
  size_t filled_ = 0;
  capture::Reader reader_;
  capture::Exchanges exchanges_;
};

Index::Index(const std::vector<std::string> &paths, Order order) : order_(order) {
  grow_slots();
  open(paths);
  read();
  if (modules_.empty()) {
    throw BadInput(
        notes_.empty()
            ? fmt::format("{}: nothing to serve; expected an exchange that reached a module",
                          printable(paths[0]))
            : notes_[0]);
  }
  for (std::string &cut : notes_) cut += "; serving what is before";
  note_what_is_left_out();
  process_places_.clear();
  last_in_threads_.clear();
  if (order_ == Order::kLast) return;
  for (Number number = 0; number < exchanges_.size(); ++number)
    if (is_first(number)) exchanges_[number].turn = number;
}

void Index::open(const std::vector<std::string> &paths) {
  if (paths.size() > kMaxFiles) {
    throw BadInput(fmt::format("{}: one of {} files; expected at most {}", printable(paths[0]),
                               paths.size(), kMaxFiles));
  }
  for (const std::string &path : paths) files_.push_back({path, open_capture(path)});
}

/// All files at once, so that their exchanges come in the order of time. Those of one file keep
/// their order, whatever the clock did.
void Index::read() {
  struct Next {
    uint64_t time;
    size_t file;
    bool operator<(const Next &other) const {
      return std::tie(time, file) > std::tie(other.time, other.file);  // the earliest on top
    }
  };
  size_t buffer = std::clamp(kBuffers / files_.size(), kSmallestBuffer, kLargestBuffer);
  std::vector<std::unique_ptr<Input>> inputs;
  std::vector<std::optional<capture::Exchange>> exchanges(files_.size());
  std::priority_queue<Next> order;
  auto advance = [&](size_t file) {
    try {
      exchanges[file] = inputs[file]->next();
      if (exchanges[file]) order.push({exchanges[file]->any().time, file});
    } catch (const capture::CutShort &cut) {
      notes_.emplace_back(cut.what());
    }
  };
  for (size_t i = 0; i < files_.size(); ++i) {
    inputs.push_back(std::make_unique<Input>(files_[i], buffer));
    advance(i);
  }
  while (!order.empty()) {
    size_t file = order.top().file;
    order.pop();
    add(file, *exchanges[file]);
    advance(file);
  }
}

void Index::add(size_t file, const capture::Exchange &exchange) {
  counts_.lost += exchange.any().lost;
  if (!exchange.request || !exchange.answer) {
    ++counts_.incomplete;
    return;
  }
  const capture::Packet &request = *exchange.request;
  const capture::Packet &answer = *exchange.answer;
  if (is_cut(request) || is_cut(answer) || answer.record_length > OLT_REPLY_LIMIT) {
    ++counts_.cut;
    return;
  }
  if (exchanges_.size() == kMaxExchanges) {
    throw BadInput(fmt::format("{}: at byte {}: exchange {} of all; expected at most {}",
                               printable(files_[file].path), request.place, kMaxExchanges + 1,
                               kMaxExchanges));
  }
  if (answer.place >= kMaxPlace || answer.place - request.place > UINT32_MAX) {
    throw BadInput(fmt::format("{}: at byte {}: the answer is at byte {}; expected it closer",
                               printable(files_[file].path), request.place, answer.place));
  }
  auto number = static_cast<Number>(exchanges_.size());
  bool may_be_absent = was_never_sent(answer.result);
  exchanges_.push_back(
      {.file = file & 0x3FFFU,
       .may_be_absent = may_be_absent,
       .is_served = false,
       .place = request.place & (kMaxPlace - 1),
       .hash = hash_as({request.module, request.message_type, request.record}, request.is_masked),
       .to_answer = static_cast<uint32_t>(answer.place - request.place)});
  if (!may_be_absent) modules_.insert(request.module);
  if (request.is_masked) masked_types_.insert(request.message_type);
  if (answer.is_masked) ++counts_.masked_replies;
  add_equal(number, request);
  if (order_ == Order::kByClient) add_to_thread(number, request);
}

/// While the captures are read, the turn of the first is that of the last.
void Index::add_equal(Number number, const capture::Packet &request) {
  size_t slot = slot_of(exchanges_[number].hash);
  if (slots_[slot] != kFreeSlot) {
    Number &last = exchanges_[slots_[slot] & kNumberMask].turn;
    exchanges_[last].next_equal = number;
    last = number;
    return;
  }
  slots_[slot] = slot_content(number);
  exchanges_[number].turn = number;
  if (++slots_in_use_ * 2 > slots_.size()) grow_slots();
  std::vector<Number> &of_type = by_type_[{request.module, request.message_type}];
  if (of_type.size() < kMaxRequestsOfType) of_type.push_back(number);
}

void Index::add_to_thread(Number number, const capture::Packet &request) {
  auto [last, is_new] =
      last_in_threads_.try_emplace({request.run, request.process, request.thread, 0}, number);
  if (!is_new) {
    exchanges_[last->second].next_in_thread = number;
    last->second = number;
    return;
  }
  auto [process, is_first] =
      process_places_.try_emplace({request.run, request.process}, processes_.size());
  if (is_first) processes_.emplace_back();
  processes_[process->second].push_back(number);
}

void Index::grow_slots() {
  constexpr size_t kFirstSlots = 1024;
  slots_.assign(slots_.empty() ? kFirstSlots : 2 * slots_.size(), kFreeSlot);
  for (Number number = 0; number < exchanges_.size(); ++number)
    if (is_first(number)) slots_[slot_of(exchanges_[number].hash)] = slot_content(number);
}

/// The number, and bits of the hash that spare most looks at other exchanges.
uint32_t Index::slot_content(Number number) const {
  return number | static_cast<uint32_t>(exchanges_[number].hash >> 56U) << kNumberBits;
}

/// That of the hash, or the free one where it belongs.
size_t Index::slot_of(uint64_t hash) const {
  auto slot = static_cast<size_t>(hash & (slots_.size() - 1));
  for (; slots_[slot] != kFreeSlot; slot = (slot + 1) & (slots_.size() - 1)) {
    uint32_t content = slots_[slot];
    if (content >> kNumberBits == hash >> 56U && exchanges_[content & kNumberMask].hash == hash)
      break;
  }
  return slot;
}

Index::Number Index::first_with(uint64_t hash) const {
  uint32_t content = slots_[slot_of(hash)];
  return content == kFreeSlot ? kNone : content & kNumberMask;
}

Index::Number Index::first_equal(const RequestHash &request) const {
  Number first = first_with(request.plain);
  return first == kNone && request.masked != 0 ? first_with(request.masked) : first;
}

void Index::note_what_is_left_out() {
  auto note = [this](size_t count, const char *noun, const char *rest) {
    if (count > 0) notes_.push_back(fmt::format("{} {}", counted(count, noun), rest));
  };
  note(counts_.cut, "exchange", "left out: a record was cut when it was recorded");
  note(counts_.incomplete, "exchange", "left out: the request or the answer is not in the capture");
  note(counts_.lost, "exchange", "lost when recording");
  note(counts_.masked_replies, "reply", "with masked secrets, served as recorded");
}

Bytes Index::comparable(const Request &request, bool is_masked) const {
  Bytes bytes(request.bytes.begin(), request.bytes.end());
  unspecified_.clear(request.module, request.message_type, bytes);
  if (!is_masked || bytes.empty()) return bytes;
  Bytes masked(bytes.size());
  copy_masked(masked.data(), bytes.data(), static_cast<uint32_t>(bytes.size()), request.module,
              request.message_type);
  return masked;
}

/// Most requests are compared as they are.
uint64_t Index::hash_as(const Request &request, bool is_masked) const {
  if (!is_masked && !unspecified_.may_be_in(request.message_type))
    return hash_request(request, false);
  Bytes bytes = comparable(request, is_masked);
  return hash_request({request.module, request.message_type, bytes}, is_masked);
}

RequestHash Index::hash_of(const Request &request) const {
  bool may_be_masked = masked_types_.contains(request.message_type);
  return {hash_as(request, false), may_be_masked ? hash_as(request, true) : 0};
}

Index::Number Index::take(const RequestHash &request) {
  Number first = first_equal(request);
  if (first == kNone) return kNone;
  Number number = exchanges_[first].turn;
  if (exchanges_[number].next_equal != kNone)
    exchanges_[first].turn = exchanges_[number].next_equal;
  return number;
}

bool Index::is_request(Number number, const RequestHash &request) const {
  uint64_t hash = exchanges_[number].hash;
  return hash == request.plain || hash == request.masked;
}

std::span<const Index::Number> Index::requests_of(uint32_t module, uint32_t message_type) const {
  auto found = by_type_.find({module, message_type});
  return found == by_type_.end() ? std::span<const Number>() : found->second;
}

capture::Packet Index::packet(Number number, uint64_t place) const {
  const File &file = files_[exchanges_[number].file];
  return capture::read_packet(file.path, file.descriptor.get(), place);
}

capture::Packet Index::request(Number number) const {
  return packet(number, exchanges_[number].place);
}

capture::Packet Index::answer(Number number) const {
  return packet(number, exchanges_[number].place + exchanges_[number].to_answer);
}

void Index::count_served(Number number) {
  if (!exchanges_[number].is_served) ++served_;
  exchanges_[number].is_served = true;
}

}  // namespace olt::replay
