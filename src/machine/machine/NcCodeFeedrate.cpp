#include "machine/machine/NcCodeFeedrate.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\NcCodeFeedrate";
}  // namespace

double NcCodeFeedrate::mmPerMinute() const noexcept {
  EXPECTS(m_type == NcCodeFeedrateType::MM_PER_MINUTE);
  return m_value;
}

double NcCodeFeedrate::mmPerRev() const noexcept {
  EXPECTS(m_type == NcCodeFeedrateType::MM_PER_REV);
  return m_value;
}

}  // namespace machine
