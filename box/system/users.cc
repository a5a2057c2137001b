// User accounts: look-up, adding, deletion, modification, and walks in the order of the table.

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "box/system/families.h"

namespace olt::box {

namespace {

constexpr size_t kMaxUsers = 32;
constexpr size_t kMaxUserText = sizeof(UserRecord::user_name) - 1;
constexpr ByteRange kPassword = {offsetof(UserRecord, user_password),
                                 offsetof(UserRecord, level_a)};

struct User {
  std::string name;
  std::string password;
  uint32_t level_a;
  uint32_t level_b;
};

std::vector<User> factory_users() {
  return {{"admin", "admin", 1, 1}};
}

class SystemUsers final : public Family {
 public:
  explicit SystemUsers(Hardware &hardware) : hardware_(hardware) {}

  std::string_view name() const override { return "system-users"; }

  std::vector<Message> messages() override {
    std::vector<Message> messages = {
        {kMainModule, 10, "user", exactly(sizeof(UserRecord)), on(this, &SystemUsers::act)},
        {kMainModule, 62, "next-user", exactly(sizeof(UserRecord)), on(this, &SystemUsers::next)},
        {kMainModule, 63, "user-by-index", exactly(sizeof(UserRecord)),
         on(this, &SystemUsers::by_index)},
    };
    for (Message &message : messages) message.secret = {.request = kPassword, .reply = kPassword};
    return messages;
  }

  void configuration(Archive &archive) override {
    archive.list("users", users_, kMaxUsers, [&](User &user) {
      archive.text("name", user.name, kMaxUserText);
      if (archive.is_reading() && !is_new_name(user.name)) {
        archive.refuse("name", "a name, each once");
      }
      archive.text("password", user.password, kMaxUserText);
      if (user.password.find('\0') != std::string::npos) {
        archive.refuse("password", "a text without zeros");
      }
      archive.number("level_a", user.level_a);
      archive.number("level_b", user.level_b);
    });
  }

  void restore_factory() override { users_ = factory_users(); }

  void describe_configuration(Report &report) const override {
    report.section("Users", {"Index", "Name", "Password", "Level A", "Level B"});
    for (size_t i = 0; i < users_.size(); ++i) {
      report.row({fmt::to_string(i), printable(users_[i].name), "**",
                  fmt::to_string(users_[i].level_a), fmt::to_string(users_[i].level_b)});
    }
  }

  size_t footprint() const override { return sizeof *this + users_.capacity() * sizeof(User); }

 private:
  enum Op : uint32_t { kLookUp = 0, kAdd = 1, kDelete = 2, kModify = 3 };

  Status act(const Request &request, Reply &reply) {
    auto record = request.record<UserRecord>();
    auto name = terminated_text_of(record.user_name);
    auto password = terminated_text_of(record.user_password);
    if (!name || name->empty() || !password) return Status::kBadValue;
    User user = {*name, *password, record.level_a, record.level_b};
    switch (record.user_op) {
      case kLookUp:
        return look_up(user, reply);
      case kAdd:
        return add(user);
      case kDelete:
        return remove(user.name);
      case kModify:
        return modify(user);
      default:
        return Status::kBadValue;
    }
  }

  Status look_up(const User &asked, Reply &reply) {
    auto user = find(asked.name);
    if (user == users_.end()) {
      record(Level::kWarning, asked.name, "is unknown: login refused");
      return Status::kNotFound;
    }
    if (user->password != asked.password) {
      record(Level::kWarning, asked.name, "gave a wrong password: login refused");
      return Status::kDenied;
    }
    return show(user, reply);
  }

  bool is_new_name(const std::string &name) {
    return !name.empty() && name.find('\0') == std::string::npos && find(name) == users_.end();
  }

  Status add(const User &user) {
    if (find(user.name) != users_.end()) return Status::kExists;
    if (users_.size() >= kMaxUsers) return Status::kFull;
    users_.push_back(user);
    record(Level::kNotice, user.name, "added");
    return Status::kOk;
  }

  Status remove(const std::string &name) {
    auto user = find(name);
    if (user == users_.end()) return Status::kNotFound;
    users_.erase(user);
    record(Level::kNotice, name, "deleted");
    return Status::kOk;
  }

  Status modify(const User &changed) {
    auto user = find(changed.name);
    if (user == users_.end()) return Status::kNotFound;
    *user = changed;
    record(Level::kNotice, changed.name, "modified");
    return Status::kOk;
  }

  Status next(const Request &request, Reply &reply) {
    auto previous = terminated_text_of(request.record<UserRecord>().user_name);
    if (!previous) return Status::kBadValue;
    if (previous->empty()) return show(users_.begin(), reply);
    auto user = find(*previous);
    return user == users_.end() ? Status::kNotFound : show(user + 1, reply);
  }

  Status by_index(const Request &request, Reply &reply) {
    uint32_t index = request.record<UserRecord>().user_index;
    if (index >= users_.size()) return Status::kNotFound;
    return show(users_.begin() + static_cast<std::ptrdiff_t>(index), reply);
  }

  Status show(std::vector<User>::iterator user, Reply &reply) {
    if (user == users_.end()) return Status::kNotFound;
    UserRecord record = {.user_index = static_cast<uint32_t>(user - users_.begin()),
                         .level_a = user->level_a,
                         .level_b = user->level_b};
    set_text(record.user_name, user->name);
    set_text(record.user_password, user->password);
    reply.record(record);
    return Status::kOk;
  }

  std::vector<User>::iterator find(const std::string &name) {
    return std::find_if(users_.begin(), users_.end(),
                        [&name](const User &user) { return user.name == name; });
  }

  void record(Level level, const std::string &name, std::string_view what) {
    hardware_.events().record(level, kMainModule, fmt::format("user \"{}\" {}", name, what));
  }

  Hardware &hardware_;
  std::vector<User> users_ = factory_users();
};

}  // namespace

std::unique_ptr<Family> make_system_users(Hardware &hardware) {
  return std::make_unique<SystemUsers>(hardware);
}

}  // namespace olt::box
