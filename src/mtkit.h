#pragma once
// mtkit: every public header of the library.

// General foundation.
#include "util/utility/Angle.h"
#include "util/utility/Basic.h"
#include "util/utility/Distance.h"
#include "util/utility/EnumBitset.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/Messages.h"
#include "util/utility/Speed.h"
#include "util/utility/Subrange.h"
#include "util/utility/Validified.h"
#include "util/utility/Variant.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Matrix3x3.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Transform3D.h"
#include "util/utility/math/Vector3D.h"

// Script-facing foundation.
#include "util/utility/ScriptException.h"
#include "util/utility/ScriptObject.h"

// NC foundation.
#include "nc/AxisInfo.h"
#include "nc/AxisName.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValueRange.h"
#include "nc/AxisValues.h"
#include "nc/MachinePartId.h"
#include "nc/TaggedFrame.h"

// Machine model.
#include "machine/machine/AxisDefinition.h"
#include "machine/machine/AxisType.h"
#include "machine/machine/ControlType.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/DisplayName.h"
#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/MachineCoolant.h"
#include "machine/machine/ModelMap.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/PartModel.h"
#include "machine/machine/PartModelCollection.h"
#include "machine/machine/PartType.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "machine/machine/SpindleDefinition.h"
#include "machine/machine/ToolStationDefinition.h"
#include "machine/machine/ToolStationInterfaceName.h"
#include "machine/machine/TurretDefinition.h"

// Machine definitions and their files.

// Runtime machine and solvers.

// Script-facing model.
#include "machine/machine/PostMachineConfig/EulerAngles.h"
#include "machine/machine/PostMachineConfig/Matrix.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "machine/machine/PostMachineConfig/VectorPair.h"
