#pragma once
// Paths as the script-facing side hands them over: wide strings, converted to
// UTF-8 for the operating system.

#include <string>

namespace Orvo {

class FileSystem {
public:
  /// True when `path` names an existing regular file (symbolic links
  /// followed).
  static bool isFile(std::wstring const& path);
  /// The folder part of `path`, without its trailing separator; empty when
  /// the path has no folder ("machine.xml").
  static std::wstring getFolderFromPath(std::wstring const& path);
  /// `path` taken relative to `folder`; an absolute `path` or an empty
  /// `folder` gives `path` itself.
  static std::wstring getCombinedPath(std::wstring const& folder, std::wstring const& path);
};

}  // namespace Orvo
