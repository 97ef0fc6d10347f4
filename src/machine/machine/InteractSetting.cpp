#include "machine/machine/InteractSetting.h"

namespace machine {

std::string InteractSetting::debugDescription() const {
  return std::string("[CHECK COLLISIONS=") + (m_checkCollisions ? "true" : "false") + "][CUT STOCK=" +
         (m_cutStock ? "true" : "false") + "]";
}

}  // namespace machine
