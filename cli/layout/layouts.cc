#include "cli/layout/layouts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/bad_input.h"
#include "base/folders.h"
#include "base/text.h"
#include "cli/layout/reader.h"
#include "cli/text/error.h"
#include "cli/text/file.h"

namespace olt::cli {

using catalog::Layout;

namespace {

constexpr std::string_view kEnding = ".json";

/// Where layouts are looked for, in that order.
std::vector<std::filesystem::path> folders() {
  std::vector<std::filesystem::path> folders;
  if (auto own = configuration_folder(); !own.empty()) folders.push_back(own / "layouts.d");
  folders.emplace_back("/etc/oltmgmt/layouts.d");
  return folders;
}

/// The files in a folder, in the order of their names.
std::vector<std::filesystem::path> files_in(const std::filesystem::path &folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() == kEnding) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// In a folder a layout is found by the name of its file.
Layout read_found(const std::filesystem::path &path) {
  Layout layout = read_layout(path);
  if (layout.name() != path.stem()) {
    wrong_usage("{}: /name: '{}' given; expected '{}', the name of its file",
                printable(path.string()), layout.name(), printable(path.stem().string()));
  }
  return layout;
}

/// A layout that lives as long as the program.
std::shared_ptr<const Layout> built_in(const Layout &layout) {
  return {std::shared_ptr<const Layout>(), &layout};
}

std::shared_ptr<const Layout> shared(Layout layout) {
  return std::make_shared<const Layout>(std::move(layout));
}

}  // namespace

Layout read_layout(const std::string &path) {
  std::error_code error;
  std::string text = read_file(path, kLongestLayout, error);
  if (error == std::errc::file_too_large) {
    wrong_usage("{}: is too large; expected at most {} bytes", printable(path), kLongestLayout);
  }
  if (error) {
    wrong_usage("{}: cannot be read: {}; expected a layout's file", printable(path),
                error.message());
  }
  try {
    return parse_layout(text);
  } catch (const BadInput &bad) {
    // "FILE:LINE:COLUMN", or "FILE: /POINTER".
    std::string_view reason = bad.what();
    wrong_usage("{}:{}{}", printable(path), reason.starts_with('/') ? " " : "", reason);
  }
}

std::string layout_in_use(const std::string &given) {
  if (!given.empty()) return given;
  const char *name = std::getenv("OLT_LAYOUT");
  return name != nullptr && *name != '\0' ? name : "box";
}

std::shared_ptr<const Layout> layout_named(const std::string &name) {
  for (const auto layout : {Layout::box, Layout::contract}) {
    if (layout().name() == name) return built_in(layout());
  }
  if (name.find('/') != std::string::npos || name.ends_with(kEnding)) {
    return shared(read_layout(name));
  }
  std::vector<std::string> names;
  for (const FoundLayout &found : found_layouts()) {
    if (found.name == name) return shared(read_found(found.path));
    names.push_back(found.name);
  }
  wrong_usage("layout: there is no layout '{}'; expected {}, or a file as ./NAME.json",
              printable(name), printable(fmt::format("{}", fmt::join(names, ", "))));
}

std::vector<FoundLayout> found_layouts() {
  std::vector<FoundLayout> all = {{Layout::box().name(), "", ""},
                                  {Layout::contract().name(), "", ""}};
  for (const std::filesystem::path &folder : folders()) {
    for (const std::filesystem::path &file : files_in(folder)) {
      FoundLayout found{file.stem(), file, ""};
      if (std::any_of(all.begin(), all.end(),
                      [&found](const FoundLayout &other) { return other.name == found.name; })) {
        continue;
      }
      try {
        read_found(file);
      } catch (const Error &error) {
        found.error = error.what();
      }
      all.push_back(std::move(found));
    }
  }
  return all;
}

}  // namespace olt::cli
