#include "box/core/hardware.h"

#include <algorithm>

#include "box/state/seal.h"

namespace olt::box {

Hardware::Hardware(const Topology &topology, StateDirectory &state, Listings listings, Clock clock)
    : topology_(topology),
      state_(state),
      listings_(std::move(listings)),
      clock_(std::move(clock)),
      events_(clock_),
      started_(clock_()) {}

std::vector<std::string> Hardware::start(Misfits misfits) {
  saved_ = read_state_file(state_, kSavedFile);
  if (!saved_) return {};
  return take_state(state_, kSavedFile, *saved_, misfits,
                    [this](Archive &archive) { describe_saved(archive); });
}

std::chrono::seconds Hardware::uptime() const {
  auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(clock_() - started_);
  return std::max(elapsed, std::chrono::seconds(0));
}

Status Hardware::list_behind_header(std::string_view kind, const std::string &text, Reply &reply) {
  ListingReply listing = {};
  set_text(listing.name, listings_.write(kind, text));
  reply.record(listing);
  return Status::kOk;
}

Status Hardware::list_at_start(std::string_view kind, const std::string &text, Reply &reply) {
  ListingReply listing = {};
  set_text(listing.name, listings_.write(kind, text));
  reply.bytes(0, bytes_of(listing).subspan(offsetof(ListingReply, name)));
  return Status::kOk;
}

void Hardware::describe_configuration(Archive &archive) {
  if (archive.is_reading()) restore_factory();
  archive.object("configuration", [&] {
    for (const auto &family : families_) {
      // A file of an earlier version has fewer families: the others keep their factory state.
      if (!archive.has(family->name())) continue;
      archive.object(family->name(), [&] { family->configuration(archive); });
    }
  });
}

void Hardware::describe_saved(Archive &archive) {
  // The topology that is read is already in use: it was chosen before the families were made.
  Topology topology = topology_;
  archive.object("topology", [&] { topology.describe(archive); });
  describe_configuration(archive);
}

std::string Hardware::configuration() {
  Archive archive;
  describe_saved(archive);
  return archive.take();
}

std::vector<std::string> Hardware::take_configuration(std::string_view data, Misfits misfits) {
  Archive archive(data);
  if (misfits == Misfits::kLeaveOut) archive.adopt();
  describe_saved(archive);
  archive.finish();
  return archive.left_out();
}

void Hardware::save() {
  std::string saved = configuration();
  state_.write(kSavedFile, seal(saved), Durable::kYes);
  saved_ = std::move(saved);
}

void Hardware::restore_factory() {
  for (const auto &family : families_) family->restore_factory();
}

void Hardware::reboot() {
  for (const auto &family : families_) family->reboot();
  if (saved_) {
    take_configuration(*saved_, Misfits::kLeaveOut);
  } else {
    restore_factory();
  }
  started_ = clock_();
}

void Hardware::describe(Archive &archive) {
  archive.moment("started", started_);
  describe_configuration(archive);
  archive.object("running", [&] {
    for (const auto &family : families_) {
      if (!archive.has(family->name())) continue;
      archive.object(family->name(), [&] { family->running(archive); });
    }
  });
  events_.describe(archive);
}

}  // namespace olt::box
