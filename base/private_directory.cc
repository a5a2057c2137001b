#include "base/private_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/accounts.h"
#include "base/failure.h"

namespace olt {

namespace {

constexpr mode_t kPermissions = 0777;
constexpr mode_t kWritableByOthers = 0022;
constexpr int kMaxLinks = 40;

/// Resolves a path from the root of the file system, one component at a time.
class PathResolver {
 public:
  explicit PathResolver(const PrivateDirectory &wanted)
      : name_(fmt::format("{} \"{}\"", wanted.what, wanted.path)),
        create_parents_(wanted.create_parents) {
    if (wanted.path.empty()) throw system_failure(name_ + " cannot be reached", ENOENT);
    add_components(std::filesystem::absolute(wanted.path).native());
    start_at_root();
  }

  /// Enters all components but the last.
  void enter_parents() {
    while (components_.size() > 1) {
      std::string component = std::move(components_.back());
      components_.pop_back();
      enter(component);
    }
  }

  const std::string &name() const { return name_; }
  int parent() const { return directory_.get(); }
  std::string last_component() const { return components_.empty() ? "." : components_.back(); }

 private:
  void add_components(std::string_view path) {
    while (!path.empty()) {
      size_t slash = path.rfind('/');
      std::string_view component = path.substr(slash + 1);
      if (!component.empty() && component != ".") components_.emplace_back(component);
      path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
    }
  }

  void start_at_root() {
    parent_path_.assign(1, '/');
    move_to(Descriptor(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC)));
  }

  void enter(const std::string &component) {
    Descriptor next = open_component(component);
    if (!next.is_open() && errno == ENOENT && create_parents_) {
      if (mkdirat(directory_.get(), component.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        throw system_failure(name_ + " cannot be created", errno);
      }
      next = open_component(component);
    }
    if (!next.is_open()) throw system_failure(name_ + " cannot be reached", errno);
    if (parent_path_.back() != '/') parent_path_ += '/';
    parent_path_ += component;
    move_to(std::move(next));
  }

  Descriptor open_component(const std::string &component) const {
    return Descriptor(openat(directory_.get(), component.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  }

  void move_to(Descriptor next) {
    struct stat found {};
    if (!next.is_open() || fstat(next.get(), &found) != 0) {
      throw system_failure(name_ + " cannot be reached", errno);
    }
    if (found.st_uid != 0 && found.st_uid != geteuid()) {
      throw Failure(fmt::format("{}: \"{}\" belongs to user {}; expected root or {}", name_,
                                parent_path_, user_name(found.st_uid), user_name(geteuid())));
    }
    if (S_ISLNK(found.st_mode)) return follow(next);
    if ((found.st_mode & kWritableByOthers) != 0 && (found.st_mode & S_ISVTX) == 0) {
      throw Failure(
          fmt::format("{}: \"{}\" has mode {:04o}; expected a directory that only its owner can "
                      "write to, or one with the sticky bit",
                      name_, parent_path_, found.st_mode & kPermissions));
    }
    directory_ = std::move(next);
  }

  /// A link of root or the own user counts as part of the path.
  void follow(const Descriptor &link) {
    char target[PATH_MAX];
    ssize_t length = readlinkat(link.get(), "", target, sizeof target);
    if (length < 0 || ++links_ > kMaxLinks) {
      throw system_failure(name_ + " cannot be reached", length < 0 ? errno : ELOOP);
    }
    std::string_view path(target, static_cast<size_t>(length));
    add_components(path);
    if (path.starts_with('/')) {
      start_at_root();
    } else {
      parent_path_.resize(parent_path_.rfind('/') + 1);
    }
  }

  const std::string name_;
  const bool create_parents_;
  std::vector<std::string> components_;  ///< those ahead; the next one is the last element
  std::string parent_path_;              ///< of directory_, for error lines
  Descriptor directory_;
  int links_ = 0;
};

bool is_empty(int directory, const std::string &name) {
  Descriptor copy(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::unique_ptr<DIR, int (*)(DIR *)> entries(copy.is_open() ? fdopendir(copy.get()) : nullptr,
                                               closedir);
  if (!entries) throw system_failure(name + " cannot be read", errno);
  copy.release();
  for (;;) {
    errno = 0;
    const dirent *entry = readdir(entries.get());
    if (entry == nullptr && errno != 0) throw system_failure(name + " cannot be read", errno);
    if (entry == nullptr) return true;
    std::string_view entry_name = entry->d_name;
    if (entry_name != "." && entry_name != "..") return false;
  }
}

/// Any user with more permissions than wanted may have put something there.
void require_untouched(int directory, const struct stat &found, const PrivateDirectory &wanted,
                       const std::string &name) {
  if (found.st_uid != geteuid()) {
    throw Failure(fmt::format("{} belongs to user {}; expected {}", name, user_name(found.st_uid),
                              user_name(geteuid())));
  }
  mode_t allowed =
      wanted.group && found.st_gid == *wanted.group ? wanted.mode : wanted.mode & S_IRWXU;
  if ((found.st_mode & kPermissions & ~allowed) != 0 && !is_empty(directory, name)) {
    std::string expected = fmt::format("mode {:04o}", wanted.mode);
    if (wanted.group) expected += fmt::format(" and group {}", group_name(*wanted.group));
    throw Failure(fmt::format("{} is not empty and has mode {:04o} and group {}; expected {}", name,
                              found.st_mode & kPermissions, group_name(found.st_gid), expected));
  }
}

void set_access(int directory, const struct stat &found, const PrivateDirectory &wanted,
                const std::string &name) {
  if (wanted.group && found.st_gid != *wanted.group &&
      fchown(directory, static_cast<uid_t>(-1), *wanted.group) != 0) {
    throw system_failure(name + " cannot be given to group " + group_name(*wanted.group), errno);
  }
  if (fchmod(directory, wanted.mode) != 0) {
    throw system_failure(name + " cannot be closed to others", errno);
  }
}

}  // namespace

Descriptor open_private_directory(const PrivateDirectory &wanted) {
  PathResolver path(wanted);
  path.enter_parents();
  std::string last = path.last_component();
  if (mkdirat(path.parent(), last.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    throw system_failure(path.name() + " cannot be created", errno);
  }
  Descriptor directory(
      openat(path.parent(), last.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat found {};
  if (!directory.is_open() || fstat(directory.get(), &found) != 0) {
    throw system_failure(path.name() + " cannot be used", errno);
  }
  require_untouched(directory.get(), found, wanted, path.name());
  set_access(directory.get(), found, wanted, path.name());
  return directory;
}

}  // namespace olt
