// IPTV profiles with their channels, the profiles of ONUs, and the channels of single users.

#include <fmt/format.h>

#include <algorithm>

#include "base/mac.h"
#include "base/text.h"
#include "box/ont/families.h"

namespace olt::box {

namespace {

constexpr size_t kMaxProfiles = 256;
constexpr size_t kMaxChannels = 1024;  ///< of one profile
constexpr size_t kMaxUserChannels = 16'384;

using Profiles = std::map<std::string, IptvState::Channels>;

Status add_channel(IptvState::Channels &channels, const Request &request) {
  auto channel = request.record<IptvChannelRow>();
  if (channels.contains(channel.number)) return Status::kExists;
  if (channels.size() == kMaxChannels) return Status::kFull;
  channels[channel.number] = std::to_array(channel.settings);
  return Status::kOk;
}

Status delete_channel(IptvState::Channels &channels, const Request &request) {
  bool known = channels.erase(request.record<IptvChannelRow>().number) != 0;
  return known ? Status::kOk : Status::kNotFound;
}

class OntIptv final : public OnuFamily {
 public:
  OntIptv(Hardware &hardware, OnuState &shared, IptvState &iptv)
      : OnuFamily("ont-iptv", shared, {shared.records.iptv_profile}),
        hardware_(hardware),
        iptv_(iptv) {}

  std::vector<Message> messages() override {
    return {
        part_message(state(), 155, "set-iptv-profile", Scope::kOnu, exactly(sizeof(ProfileName)),
                     on(this, &OntIptv::attach)),
        part_message(state(), 156, "unset-iptv-profile", Scope::kOnu, exactly(0),
                     on(this, &OntIptv::detach)),
        {kMainModule, 157, "create-iptv-profile", exactly(sizeof(ProfileName)),
         on(this, &OntIptv::create)},
        profile_message(158, "clear-iptv-profile", 0, on(this, &OntIptv::remove)),
        channel_message(159, "delete-iptv-channel", delete_channel),
        channel_message(160, "add-iptv-channel", add_channel),
        profile_message(161, "iptv-profile", 0, on(this, &OntIptv::list)),
        {kMainModule, 162, "add-user-channel", exactly(sizeof(UserChannelRecord)),
         on(this, &OntIptv::add_user_channel)},
        {kMainModule, 163, "delete-user-channel", exactly(sizeof(UserChannelRecord)),
         on(this, &OntIptv::delete_user_channel)},
    };
  }

  void configuration(Archive &archive) override {
    describe_profiles(archive);
    archive.list("user_channels", iptv_.user_channels, kMaxUserChannels, [&](UserChannel &channel) {
      archive.bytes("user", channel.user);
      archive.number("a", channel.a);
      archive.number("b", channel.b);
      archive.number("c", channel.c);
      archive.number("d", channel.d);
    });
    archive.object("onus", [&] {
      OnuFamily::configuration(archive);
      for (const auto &[onu, record] : attachments().kept()) {
        if (!iptv_.profiles.contains(text_in(record))) {
          archive.refuse(attachments().key(), "profiles that exist");
        }
      }
    });
  }

  void restore_factory() override {
    OnuFamily::restore_factory();
    iptv_.profiles.clear();
    iptv_.user_channels.clear();
  }

  void describe_configuration(Report &report) const override {
    if (!iptv_.profiles.empty()) report.section("IPTV profiles");
    for (const auto &[name, channels] : iptv_.profiles) {
      report.row({printable(name), counted(channels.size(), "channel")});
      for (const auto &[number, settings] : channels) {
        report.row({"", fmt::to_string(number), to_hex(settings)});
      }
    }
    if (!iptv_.user_channels.empty()) {
      report.section("IPTV channels of single users", {"User", "a", "b", "c", "d"});
    }
    for (const UserChannel &channel : iptv_.user_channels) {
      report.row({mac_text(channel.user), fmt::to_string(channel.a), fmt::to_string(channel.b),
                  fmt::to_string(channel.c), fmt::to_string(channel.d)});
    }
    OnuFamily::describe_configuration(report);
  }

  size_t footprint() const override {
    size_t size = OnuFamily::footprint() + iptv_.user_channels.size() * sizeof(UserChannel);
    for (const auto &[name, channels] : iptv_.profiles) {
      size +=
          sizeof(Profiles::value_type) + channels.size() * sizeof(IptvState::Channels::value_type);
    }
    return size;
  }

 private:
  using Profile = Profiles::value_type;
  using ProfileAction = std::function<Status(Profile &, const Request &, Reply &)>;

  /// A message about an existing profile, whose name is at the given offset, at the request's end.
  Message profile_message(uint32_t type, std::string_view message, size_t name_at,
                          ProfileAction act) {
    auto handler = [this, name_at, act = std::move(act)](const Request &request, Reply &reply) {
      std::string name = text_of(request.record<ProfileName>(name_at).name);
      if (name.empty()) return Status::kBadValue;
      auto profile = iptv_.profiles.find(name);
      if (profile == iptv_.profiles.end()) return Status::kNotFound;
      return act(*profile, request, reply);
    };
    return {kMainModule, type, message, exactly(name_at + sizeof(ProfileName)), handler};
  }

  /// A message that changes the channels of a profile: a channel record, then the name.
  Message channel_message(uint32_t type, std::string_view message,
                          Status (*change)(IptvState::Channels &, const Request &)) {
    return profile_message(type, message, sizeof(IptvChannelRow),
                           [change](Profile &profile, const Request &request, Reply &) {
                             return change(profile.second, request);
                           });
  }

  Status create(const Request &request) {
    std::string name = text_of(request.record<ProfileName>().name);
    if (name.empty()) return Status::kBadValue;
    if (iptv_.profiles.contains(name)) return Status::kExists;
    if (iptv_.profiles.size() == kMaxProfiles) return Status::kFull;
    iptv_.profiles[name];
    record(name, "created");
    return Status::kOk;
  }

  Status remove(Profile &profile) {
    for (const OnuPart &onu : users_of(profile.first)) attachments().erase(onu);
    record(profile.first, "cleared");
    iptv_.profiles.erase(iptv_.profiles.find(profile.first));
    return Status::kOk;
  }

  Status list(Profile &profile, Reply &reply) {
    const auto &[name, channels] = profile;
    Report report(fmt::format("IPTV profile {}", printable(name)));
    report.section(counted(channels.size(), "channel"), {"Channel", "Settings"});
    for (const auto &[number, settings] : channels) {
      report.row({fmt::to_string(number), to_hex(settings)});
    }
    auto users = users_of(name);
    report.section(counted(users.size(), "ONU"));
    for (const OnuPart &onu : users) report.row({to_text(onu)});
    return hardware_.list_at_start("iptv", report.text(), reply);
  }

  Status attach(const OnuPart &onu, const Request &request) {
    auto field = request.record<ProfileName>(sizeof(OntTarget));
    std::string name = text_of(field.name);
    if (name.empty()) return Status::kBadValue;
    if (!iptv_.profiles.contains(name)) return Status::kNotFound;
    set_text(field.name, name);
    attachments().set(onu, bytes_of(field));
    return Status::kOk;
  }

  Status detach(const OnuPart &onu) {
    if (!attachments().kept().contains(onu)) return Status::kNotFound;
    attachments().erase(onu);
    return Status::kOk;
  }

  Status add_user_channel(const Request &request) {
    UserChannel channel = read_user_channel(request);
    if (!is_unicast(channel.user)) return Status::kBadValue;
    if (iptv_.user_channels.contains(channel)) return Status::kExists;
    if (iptv_.user_channels.size() == kMaxUserChannels) return Status::kFull;
    iptv_.user_channels.insert(channel);
    return Status::kOk;
  }

  Status delete_user_channel(const Request &request) {
    bool known = iptv_.user_channels.erase(read_user_channel(request)) != 0;
    return known ? Status::kOk : Status::kNotFound;
  }

  static UserChannel read_user_channel(const Request &request) {
    auto record = request.record<UserChannelRecord>();
    return {std::to_array(record.user), record.a, record.b, record.c, record.d};
  }

  std::vector<OnuPart> users_of(const std::string &profile) const {
    std::vector<OnuPart> users;
    for (const auto &[onu, record] : attachments().kept()) {
      if (text_in(record) == profile) users.push_back(onu);
    }
    return users;
  }

  void describe_profiles(Archive &archive) {
    if (archive.is_reading()) iptv_.profiles.clear();
    archive.list(
        "profiles", kMaxProfiles,
        [&] {
          for (auto &[name, channels] : iptv_.profiles) {
            archive.element([&, name = name, &channels = channels]() mutable {
              archive.text("name", name, sizeof(ProfileName));
              describe_channels(archive, channels);
            });
          }
        },
        [&] {
          std::string name;
          archive.text("name", name, sizeof(ProfileName));
          bool usable = !name.empty() && name.find('\0') == std::string::npos;
          if (!usable || iptv_.profiles.contains(name)) archive.refuse("name", "a name, each once");
          describe_channels(archive, iptv_.profiles[name]);
        });
  }

  static void describe_channels(Archive &archive, IptvState::Channels &channels) {
    archive.list(
        "channels", kMaxChannels,
        [&] {
          for (auto &[number, settings] : channels) {
            archive.element([&, number = number, &settings = settings]() mutable {
              archive.number("number", number);
              archive.bytes("settings", settings);
            });
          }
        },
        [&] {
          uint32_t number = 0;
          archive.number("number", number);
          archive.bytes("settings", channels[number]);
        });
  }

  RecordTable &attachments() const { return state().records.iptv_profile; }

  void record(std::string_view profile, std::string_view what) {
    hardware_.events().record(Level::kNotice, kMainModule,
                              fmt::format("IPTV profile {} {}", printable(profile), what));
  }

  Hardware &hardware_;
  IptvState &iptv_;
};

}  // namespace

std::unique_ptr<Family> make_ont_iptv(Hardware &hardware, OnuState &state, IptvState &iptv) {
  return std::make_unique<OntIptv>(hardware, state, iptv);
}

}  // namespace olt::box
