#include "machine/machine/SimulationStream.h"

#include <cstdint>

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\SimulationStream";

void appendUtf8(std::string& out, std::uint32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}
}  // namespace

SimulationStream::~SimulationStream() = default;

void SimulationStream::onAxisValues(Orvo::AxisValues const& avs) {
  if (!isPreCheckOk()) return;
  ORVO_ASSERT(avs.size() == m_numAxesInOrdering);
  doOnAxisValues(avs);
}

void SimulationStream::onNcOutput(std::wstring const& text) {
  if (!isPreCheckOk()) return;
  convertWStringToString(text);
  doOnNcOutput(m_utf8Buffer);
}

void SimulationStream::onIssue(IssueCode code, std::wstring const& message) {
  if (!isPreCheckOk()) return;
  convertWStringToString(message);
  doOnIssue(code, m_utf8Buffer);
}

Orvo::NCMessageSeverity SimulationStream::severityOfIssue(IssueCode code) noexcept {
  return Orvo::NCMessageSeverity(code == IssueCode::POST_WARNING ? Orvo::NCMessageSeverity::WARNING
                                                                 : Orvo::NCMessageSeverity::ERROR);
}

void SimulationStream::doOnApiVersion(int major, int minor) {
  if (!(major == 1 && minor < 1)) m_isOk = false;
}

void SimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) {}

void SimulationStream::convertWStringToString(std::wstring const& wide) {
  m_utf8Buffer.clear();
  // Grown to the input's length first, and never shrunk, so that steady
  // traffic converts without allocating.
  if (m_utf8Buffer.capacity() < wide.size()) m_utf8Buffer.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    std::uint32_t c = static_cast<std::uint32_t>(wide[i]);
    if (sizeof(wchar_t) == 2 && c >= 0xD800 && c < 0xDC00 && i + 1 < wide.size()) {
      std::uint32_t const low = static_cast<std::uint32_t>(wide[i + 1]);
      if (low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    // Lone surrogates and values beyond Unicode become the replacement
    // character, as everywhere else in the library.
    if ((c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) c = 0xFFFD;
    appendUtf8(m_utf8Buffer, c);
  }
}

}  // namespace machine
