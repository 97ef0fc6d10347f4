#pragma once
// A tool as an NC program announces it: its number, its geometry, the pitch
// it cuts a thread with, and the unit in which all of these are written.

#include <string>

#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"

namespace Orvo {

class NCTool {
public:
  /// Tool number 0, no geometry, no pitch, millimetres.
  NCTool() = default;
  NCTool(int number, ToolGeometry const& geometry, int unit = NCUnit::MILLIMETER, double threadPitch = 0.0,
         std::string description = std::string())
      : m_number(number),
        m_geometry(geometry),
        m_unit(unit),
        m_threadPitch(threadPitch),
        m_description(std::move(description)) {}

  int getNumber() const noexcept { return m_number; }
  ToolGeometry const& getGeometry() const noexcept { return m_geometry; }
  /// The geometry's radius, in the tool's unit.
  double getRadius() const noexcept { return m_geometry.radius(); }
  /// An NCUnit number.
  int getUnit() const noexcept { return m_unit; }
  /// Axial travel per spindle turn when threading, in the tool's unit; 0 for
  /// a tool that cuts no thread.
  double getThreadPitch() const noexcept { return m_threadPitch; }
  std::string const& getDescription() const noexcept { return m_description; }

  void setNumber(int number) noexcept { m_number = number; }
  void setGeometry(ToolGeometry const& geometry) noexcept { m_geometry = geometry; }
  void setUnit(int unit) noexcept { m_unit = unit; }
  void setThreadPitch(double pitch) noexcept { m_threadPitch = pitch; }
  void setDescription(std::string description) { m_description = std::move(description); }

  friend bool operator==(NCTool const& a, NCTool const& b) noexcept {
    return a.m_number == b.m_number && a.m_geometry == b.m_geometry && a.m_unit == b.m_unit &&
           a.m_threadPitch == b.m_threadPitch && a.m_description == b.m_description;
  }
  friend bool operator!=(NCTool const& a, NCTool const& b) noexcept { return !(a == b); }

private:
  int m_number = 0;
  ToolGeometry m_geometry;
  int m_unit = NCUnit::MILLIMETER;
  double m_threadPitch = 0.0;
  std::string m_description;
};

}  // namespace Orvo
