#pragma once
// A frame a post-processor announces: its own tag and the tag of the frame it
// is expressed in.

#include <string>

#include "util/utility/math/Frame.h"

namespace Orvo {

class TaggedFrame {
public:
  TaggedFrame(std::string tag, std::string baseFrameTag, Frame const& frame)
      : m_tag(std::move(tag)), m_baseFrameTag(std::move(baseFrameTag)), m_frame(frame) {}

  std::string const& tag() const noexcept { return m_tag; }
  std::string const& baseFrameTag() const noexcept { return m_baseFrameTag; }
  Frame const& frame() const noexcept { return m_frame; }

  friend bool operator==(TaggedFrame const& a, TaggedFrame const& b) noexcept {
    return a.m_tag == b.m_tag && a.m_baseFrameTag == b.m_baseFrameTag && a.m_frame == b.m_frame;
  }
  friend bool operator!=(TaggedFrame const& a, TaggedFrame const& b) noexcept { return !(a == b); }

private:
  std::string m_tag;
  std::string m_baseFrameTag;
  Frame m_frame;
};

}  // namespace Orvo
