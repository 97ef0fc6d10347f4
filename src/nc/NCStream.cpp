#include "nc/NCStream.h"

namespace Orvo {

NCStream::~NCStream() = default;

bool NCStream::onParameter(std::string const&, Vector3D const&) { return true; }

bool NCStream::onRapid5DOriented(Point3D const& target, Vector3D const& toolAxis, Vector3D const&,
                                 unsigned int flags) {
  return onRapid5D(target, toolAxis, flags);
}

bool NCStream::onLinear5DOriented(Point3D const& target, Vector3D const& toolAxis, Vector3D const&, double feed,
                                  unsigned int flags) {
  return onLinear5D(target, toolAxis, feed, flags);
}

}  // namespace Orvo
