#include "box/core/hardware.h"

#include <algorithm>

#include "box/state/state_file.h"

namespace olt::box {

Hardware::Hardware(const Topology &topology, StateDirectory &state, Listings listings, Clock clock)
    : topology_(topology),
      state_(state),
      listings_(std::move(listings)),
      clock_(std::move(clock)),
      events_(clock_),
      started_(clock_()) {}

void Hardware::start(std::vector<std::unique_ptr<Family>> families) {
  families_ = std::move(families);
  load_saved();
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

Json Hardware::configuration() const {
  Json value = Json::object();
  for (const auto &family : families_) value[std::string(family->name())] = family->configuration();
  return value;
}

void Hardware::configure(const Json &value, const std::string &place) {
  restore_factory();
  ObjectReader reader(value, place);
  for (const auto &family : families_) {
    // A file of an earlier version may lack a family, which then keeps its factory state.
    const Json *member = reader.find(family->name());
    if (member != nullptr) family->configure(*member, reader.place_of(family->name()));
  }
  reader.finish();
}

void Hardware::load_saved() {
  read_state_file(state_, kSavedFile, [this](ObjectReader &members) {
    const Json &value = members.get("configuration");
    configure(value, members.place_of("configuration"));
    saved_ = value;
  });
}

void Hardware::save() {
  Json value = configuration();
  write_state_file(state_, kSavedFile, {{"configuration", value}});
  saved_ = std::move(value);
}

void Hardware::restore_factory() {
  for (const auto &family : families_) family->restore_factory();
}

void Hardware::reboot() {
  for (const auto &family : families_) family->reboot();
  if (saved_.is_null()) {
    restore_factory();
  } else {
    configure(saved_, "/configuration");
  }
  started_ = clock_();
}

Json Hardware::running() const {
  Json families = Json::object();
  for (const auto &family : families_) families[std::string(family->name())] = family->running();
  auto started = std::chrono::floor<std::chrono::seconds>(started_.time_since_epoch());
  return {{"started", static_cast<uint64_t>(started.count())},
          {"configuration", configuration()},
          {"families", families},
          {"events", events_.to_json()}};
}

void Hardware::resume(const Json &value, const std::string &place) {
  ObjectReader reader(value, place);
  started_ = TimePoint(std::chrono::seconds(reader.number("started", kAnyU32)));
  configure(reader.get("configuration"), reader.place_of("configuration"));
  const Json &families = reader.get("families");
  ObjectReader family_reader(families, reader.place_of("families"));
  for (const auto &family : families_) {
    const Json *member = family_reader.find(family->name());
    if (member != nullptr) family->resume(*member, family_reader.place_of(family->name()));
  }
  family_reader.finish();
  events_.from_json(reader.get("events"), reader.place_of("events"));
  reader.finish();
}

}  // namespace olt::box
