#pragma once
// One component of a machine on the side of the simulation library, which
// this library doesn't link: the host implements it over that library, and
// QskSimMachineCreator tells it what the component carries.

#include <string>

#include "machine/machine/AnglePreference.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class QskSimComponentAdaptor {
public:
  QskSimComponentAdaptor(QskSimComponentAdaptor const&) = default;
  QskSimComponentAdaptor& operator=(QskSimComponentAdaptor const&) = default;

  // Virtual operations, in slot order.
  virtual ~QskSimComponentAdaptor() = 0;
  /// `flag` is always 0.
  virtual void addLinearAxis(std::string const& axisName, Orvo::Vector3D const& direction, int flag) = 0;
  /// `flag` is always 0.
  virtual void addRotaryAxis(std::string const& axisName, Orvo::Vector3D const& direction, Orvo::Point3D const& point,
                             int flag) = 0;
  virtual void setHeadAttachFrame(Orvo::Frame const& attachFrame, bool isMain) = 0;
  virtual void setTableAttachFrame(Orvo::Frame const& attachFrame, bool isMain) = 0;
  virtual void setAnglePreference(AnglePreference const& preference) = 0;

protected:
  QskSimComponentAdaptor() = default;
};

}  // namespace machine
