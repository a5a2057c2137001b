/// Private folders of tests, and whole files.
#ifndef OLT_TESTS_SUPPORT_FOLDER_H
#define OLT_TESTS_SUPPORT_FOLDER_H

#include <string>
#include <string_view>

namespace olt::test {

/// A folder in the system's temporary one. The destructor removes it with its content.
class Folder {
 public:
  Folder();
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;
  ~Folder();

  const std::string &path() const { return path_; }
  /// The path of an entry.
  std::string operator/(std::string_view name) const;
  /// Writes a file in it. @return its path.
  std::string write(std::string_view name, std::string_view content) const;

 private:
  std::string path_;
};

/// Empty when there is no such file.
std::string read_file(const std::string &path);
void write_file(const std::string &path, std::string_view content);

}  // namespace olt::test

#endif
