#pragma once

// How a bundle lies in the file system: a folder with an Info.plist, resources and code, in one of
// several layouts.
//
//   Name.app/Contents/{Info.plist, Resources/, Frameworks/, PlugIns/, Linux/Name}
//   Name.framework/{Name, Resources, Versions/Current -> A, Versions/A/{Name, Resources/}}
//   Name.bundle/{Name, Resources/Info.plist} or Name.bundle/{Name, Info.plist}
//
// Any folder is a bundle, an empty one too. Paths are bytes. Nothing is read here but folders, and
// nothing fails: what cannot be looked at is not there.

#include <string>
#include <string_view>
#include <vector>

namespace brindle::internal {

struct BundleLayout {
  std::string path;
  /// Where Frameworks, PlugIns and the like lie.
  std::string contents;
  /// Where they lie otherwise: the current version's folder. Empty where there are no versions.
  std::string version;
  /// The bundle's folder itself where there is no other.
  std::string resources;
  /// Empty when there is no Info.plist.
  std::string infoFile;
};

/// The path from the root, without empty components, "." and, where there are such, "..", which are
/// taken off by what the folders really are. Links stay.
std::string absolutePath(std::string_view path);

/// The folder that the path lies in; "/" for the root. And its last component.
std::string parentOf(std::string_view path);
std::string_view nameOf(std::string_view path) noexcept;
/// Behind the last point of the name, unless that begins it; otherwise empty.
std::string_view extensionOf(std::string_view path) noexcept;
std::string_view withoutExtension(std::string_view name) noexcept;
std::string joined(std::string_view folder, std::string_view name);

bool isFolder(const std::string& path) noexcept;
bool isFile(const std::string& path) noexcept;
/// The path without links; empty when nothing is there, or links go in a circle.
std::string realPath(const std::string& path);
/// The names in a folder, sorted, without "." and "..".
std::vector<std::string> namesIn(const std::string& folder);
/// The whole file; empty when it is no file, cannot be read, or has more than 64 MiB.
std::string contentsOfFile(const std::string& path);

/// The layout of an existing folder, by its absolute path.
BundleLayout layoutOf(const std::string& path);

/// The bundle of a program, by the real path of its executable: the application around it, or else
/// the folder that it lies in. Of a program in a folder without resources that has
/// `../share/<program>`, the resources lie there and what else a bundle holds in
/// `../lib/<program>`.
BundleLayout layoutOfProgram(const std::string& executable);

/// The executable of that name. For an empty name, of the name of the bundle, also with the endings
/// of libraries. Empty when it is not there, or the name is more than a name.
std::string executableIn(const BundleLayout& layout, std::string_view name);

/// The path of a folder such as "Frameworks", there or not.
std::string folderIn(const BundleLayout& layout, std::string_view name);

/// The folders which, by their place, may be the bundle that this code belongs to.
std::vector<std::string> foldersAroundCode(const std::string& image);

}  // namespace brindle::internal
