#pragma once
// What every persist reader and writer throws: a stream that is truncated,
// corrupted, of the wrong type or written by a newer version, or an object
// that cannot be written in the chosen form. The text says what was expected
// and where: the member path and, in the binary form, the byte offset.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace persist {

class PersistError : public std::runtime_error {
public:
  PersistError(std::string const& message, std::string path, std::optional<std::uint64_t> byteOffset);
  ~PersistError() override;

  /// The member path, such as "root.m_container_versioned[2].motion"; empty
  /// for a problem of the stream as a whole.
  std::string const& path() const noexcept { return m_path; }
  /// Where the binary reader stood; empty for the JSON form and for writers.
  std::optional<std::uint64_t> byteOffset() const noexcept { return m_byteOffset; }

private:
  std::string m_path;
  std::optional<std::uint64_t> m_byteOffset;
};

}  // namespace persist
