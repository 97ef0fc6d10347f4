#include <cstdio>

#include "machine/machine/PartDefinition.h"
#include "mtkit.h"

int main() {
  Orvo::Transform3D const t(Orvo::Translation3DArgs{Orvo::Vector3D(1, 2, 3)});
  Orvo::Point3D const p = t(Orvo::Point3D(0, 0, 0));
  machine::PartDefinition part(Orvo::MachinePartId("x"), machine::PartType::STATIC);
  std::printf("%g %g %g %s\n", p.x, p.y, p.z, part.identifier().c_str());
  return (p.x == 1 && p.y == 2 && p.z == 3) ? 0 : 1;
}
