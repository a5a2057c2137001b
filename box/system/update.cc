// Firmware updates: one stream for the OLT, one for the ONUs.

#include <fmt/format.h>

#include <algorithm>

#include "box/system/families.h"

namespace olt::box {

namespace {

constexpr size_t kMaxPiece = size_t{16} * 1024 * 1024;

/// A firmware image that arrives in pieces.
class UpdateStream {
 public:
  UpdateStream(std::string_view key, std::string_view title) : key_(key), title_(title) {}

  Status take(const Request &request, Reply &reply, EventLog &events) {
    auto [total, offset] = request.record<UpdatePiece>();
    auto length = static_cast<uint32_t>(request.size() - sizeof(UpdatePiece));
    bool sound = total <= kMaxImage && offset < total && length <= total - offset;
    if (!sound) return Status::kBadValue;
    if (offset == 0) begin(total, events);
    if (!continues(total, offset)) return fail(events);
    received_ = std::max(received_, offset + length);
    if (received_ == total_ && state_ == State::kReceiving) {
      state_ = State::kComplete;
      record(events, Level::kNotice, "complete");
    }
    reply.record(UpdateProgress{received_, progress()});
    return Status::kOk;
  }

  /// 0 when idle, 1 to 99 per cent while receiving, 100 when complete, or kUpdateFailed.
  uint32_t progress() const {
    if (state_ == State::kIdle) return 0;
    if (state_ == State::kFailed) return kUpdateFailed;
    if (state_ == State::kComplete) return kUpdateComplete;
    return std::clamp(static_cast<uint32_t>(uint64_t{received_} * 100 / total_), 1U, 99U);
  }

  void reset() {
    state_ = State::kIdle;
    total_ = 0;
    received_ = 0;
  }

  void describe(Archive &archive) {
    archive.object(key_, [&] {
      auto state = static_cast<uint32_t>(state_);
      archive.number("state", state, {0, static_cast<uint64_t>(State::kFailed)});
      state_ = static_cast<State>(state);
      // An update that has begun has a length to divide by.
      archive.number("total", total_, {state_ == State::kIdle ? 0U : 1U, kMaxImage});
      archive.number("received", received_, {0, total_});
    });
  }

  std::string describe() const {
    static constexpr std::string_view kNames[] = {"idle", "receiving", "complete", "failed"};
    std::string_view state = kNames[static_cast<size_t>(state_)];
    if (state_ == State::kIdle) return std::string(state);
    return fmt::format("{}, {} of {} bytes", state, received_, total_);
  }

 private:
  enum class State : uint32_t { kIdle, kReceiving, kComplete, kFailed };

  void begin(uint32_t total, EventLog &events) {
    state_ = State::kReceiving;
    total_ = total;
    received_ = 0;
    record(events, Level::kNotice, "begun");
  }

  /// Accepts the next piece, or a repeated one: the answer to it may have been lost.
  bool continues(uint32_t total, uint32_t offset) const {
    bool under_way = state_ == State::kReceiving || state_ == State::kComplete;
    return under_way && total == total_ && offset <= received_;
  }

  Status fail(EventLog &events) {
    if (state_ == State::kReceiving) {
      state_ = State::kFailed;
      record(events, Level::kError, "failed: a piece does not continue it");
    }
    return Status::kOutOfOrder;
  }

  void record(EventLog &events, Level level, std::string_view what) {
    events.record(level, kMainModule, fmt::format("{} {}", title_, what));
  }

  std::string_view key_;
  std::string_view title_;
  State state_ = State::kIdle;
  uint32_t total_ = 0;
  uint32_t received_ = 0;
};

class SystemUpdate final : public Family {
 public:
  explicit SystemUpdate(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-update"; }

  std::vector<Message> messages() override {
    return {
        stream_message(11, "update-olt", olt_),
        {kMainModule, 61, "update-status", exactly(0), on(this, &SystemUpdate::card_status)},
        stream_message(64, "update-onu", onu_),
    };
  }

  void running(Archive &archive) override {
    olt_.describe(archive);
    onu_.describe(archive);
  }

  void reboot() override {
    olt_.reset();
    onu_.reset();
  }

  void describe_running(Report &report) const override {
    report.section("Firmware updates");
    report.row({"OLT", olt_.describe()});
    report.row({"ONUs", onu_.describe()});
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Message stream_message(uint32_t type, std::string_view message, UpdateStream &stream) {
    return {kMainModule,
            type,
            message,
            {sizeof(UpdatePiece), kMaxPiece},
            [this, &stream](const Request &request, Reply &reply) {
              return stream.take(request, reply, hardware_.events());
            }};
  }

  Status card_status(Reply &reply) {
    reply.record(olt_.progress());
    return Status::kOk;
  }

  Hardware &hardware_;
  UpdateStream olt_ = {"olt", "update of the OLT"};
  UpdateStream onu_ = {"onu", "update of ONUs"};
};

}  // namespace

std::unique_ptr<Family> make_system_update(Hardware &hardware) {
  return std::make_unique<SystemUpdate>(hardware);
}

}  // namespace olt::box
