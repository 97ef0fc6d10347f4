#include "util/utility/FileSystem.h"

#include <filesystem>
#include <system_error>

#include "util/utility/Messages.h"

namespace Orvo {

namespace {

std::filesystem::path toPath(std::wstring const& path) { return std::filesystem::u8path(Messages::wideToUtf8(path)); }

}  // namespace

bool FileSystem::isFile(std::wstring const& path) {
  std::error_code error;
  return !path.empty() && std::filesystem::is_regular_file(toPath(path), error);
}

std::wstring FileSystem::getFolderFromPath(std::wstring const& path) {
  auto const slash = path.find_last_of(L'/');
  if (slash == std::wstring::npos) return std::wstring();
  if (slash == 0) return L"/";
  return path.substr(0, slash);
}

std::wstring FileSystem::getCombinedPath(std::wstring const& folder, std::wstring const& path) {
  if (folder.empty() || (!path.empty() && path.front() == L'/')) return path;
  if (folder.back() == L'/') return folder + path;
  return folder + L'/' + path;
}

}  // namespace Orvo
