#include "box/watch/captures.h"

#include <fmt/format.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <utility>

#include "base/bad_input.h"

namespace olt::box {

namespace {

using std::chrono::steady_clock;

constexpr size_t kMaxStreams = 8;
constexpr size_t kMaxUnread = 4 << 20;
constexpr std::chrono::seconds kUnread(600);
/// When there are as many as there may be.
constexpr std::chrono::seconds kUnreadOfMany(10);
constexpr size_t kMaxPrograms = 1000;
constexpr size_t kReadHead = 16;
constexpr size_t kMaxCapturePiece = 65'535 - kReadHead;

uint64_t nanoseconds_now() {
  auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<uint64_t>(std::chrono::nanoseconds(now).count());
}

/// The name of the program that runs in the process.
std::string program_in(uint32_t process) {
  std::string folder = fmt::format("/proc/{}/", process);
  std::array<char, PATH_MAX> path{};
  ssize_t length = readlink((folder + "exe").c_str(), path.data(), path.size());
  std::string name(path.data(), length > 0 ? static_cast<size_t>(length) : 0);
  name.erase(0, name.rfind('/') + 1);
  if (name.empty()) std::getline(std::ifstream(folder + "comm"), name);  // of another user
  return name.empty() ? "unknown" : name;
}

}  // namespace

bool Captures::Stream::wants(const capture::WrittenExchange &exchange) const {
  // The exchange that asked for the capture began before it.
  return !has_ended && exchange.began >= began && (module == 0 || module == exchange.module) &&
         (type == 0 || type == exchange.message_type);
}

Captures::Captures(std::optional<capture::CaptureFileOptions> file, std::string listings)
    : listings_(std::move(listings)),
      run_(static_cast<uint32_t>(nanoseconds_now() / 1'000'000'000)) {
  if (file) file_.emplace("oltbox", std::move(*file));
}

void Captures::when_wanted(std::function<void(bool is_wanted)> tell) {
  tell_ = std::move(tell);
  this->tell();
}

void Captures::tell() {
  bool is_wanted = file_ || std::any_of(streams_.begin(), streams_.end(),
                                        [](const Stream &one) { return !one.has_ended; });
  if (tell_) tell_(is_wanted);
}

const std::string &Captures::program_of(uint32_t process, uint64_t connection) {
  if (programs_.size() == kMaxPrograms) programs_.clear();
  std::string &program = programs_[connection];
  if (program.empty()) program = program_in(process);
  return program;
}

void Captures::add(capture::WrittenExchange exchange, uint64_t connection) {
  exchange.run = run_;
  exchange.number = ++exchanges_;
  const std::string &program = program_of(exchange.process, connection);
  if (file_) file_->add(exchange, program, listings_);
  for (Stream &stream : streams_) {
    if (!stream.wants(exchange)) continue;
    stream.writer.add(exchange, program, stream.bytes, kMaxUnread);
    stream.has_ended = stream.count != 0 && stream.writer.exchanges() == stream.count;
  }
  forget_unread(kUnread);
}

void Captures::forget_unread(std::chrono::seconds age) {
  Time now = steady_clock::now();
  if (streams_.remove_if([&](const Stream &one) { return now - one.last_read > age; }) > 0) tell();
}

Captures::Stream *Captures::find(uint32_t id) {
  auto found = std::find_if(streams_.begin(), streams_.end(),
                            [id](const Stream &stream) { return stream.id == id; });
  return found == streams_.end() ? nullptr : &*found;
}

void Captures::start(Archive &command, Archive &reply) {
  bool with_secrets = false;
  uint32_t module = 0;
  uint32_t type = 0;
  uint32_t count = 0;
  if (command.has("module")) command.number("module", module);
  if (command.has("type")) command.number("type", type);
  if (command.has("count")) command.number("count", count);
  if (command.has("secrets")) command.flag("secrets", with_secrets);
  command.finish();
  if (streams_.size() == kMaxStreams) forget_unread(kUnreadOfMany);
  if (streams_.size() == kMaxStreams) {
    throw BadInput(
        fmt::format("{} captures are read already; expected one to end first", kMaxStreams));
  }
  Stream &stream = streams_.emplace_back(Stream{.id = ++last_id_,
                                                .writer = {"oltbox", with_secrets},
                                                .began = nanoseconds_now(),
                                                .module = module,
                                                .type = type,
                                                .count = count,
                                                .bytes = {},
                                                .last_read = steady_clock::now()});
  stream.writer.begin(stream.bytes);
  reply.number("capture", stream.id);
  tell();
}

void Captures::stop(Archive &command, Archive &reply) {
  uint32_t id = 0;
  command.number("capture", id);
  command.finish();
  Stream *stream = find(id);
  if (stream == nullptr) throw BadInput(fmt::format("/capture: is {}, which has ended", id));
  stream->has_ended = true;
  reply.number("capture", id);
  tell();
}

std::optional<Bytes> Captures::read(ByteView request) {
  uint32_t id = 0;
  if (request.size() == sizeof id) std::memcpy(&id, request.data(), sizeof id);
  Stream *stream = find(id);
  if (stream == nullptr) return std::nullopt;
  stream->last_read = steady_clock::now();
  auto length = static_cast<ptrdiff_t>(std::min(stream->bytes.size(), kMaxCapturePiece));
  bool is_over = stream->has_ended && stream->bytes.size() <= kMaxCapturePiece;
  const uint32_t head[] = {is_over ? 1U : 0U, stream->writer.exchanges(), stream->writer.lost(), 0};
  static_assert(sizeof head == kReadHead);
  Bytes piece(kReadHead);
  std::memcpy(piece.data(), head, sizeof head);
  piece.insert(piece.end(), stream->bytes.begin(), stream->bytes.begin() + length);
  stream->bytes.erase(stream->bytes.begin(), stream->bytes.begin() + length);
  if (is_over) streams_.remove_if([id](const Stream &one) { return one.id == id; });
  return piece;
}

}  // namespace olt::box
