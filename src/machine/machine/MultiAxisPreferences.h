#pragma once
// How a post-processor should treat multi-axis motion on this machine:
// singularities, multi-axis feed output, retract and reconfigure, the
// virtual tool tip and tilted work planes. The "multiaxis" feature. The
// three option records are those of the script-facing machine
// configuration; each is absent until a file or a setter gives it.

#include <json/value.h>

#include <optional>
#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "machine/machine/PostMachineConfig/MultiAxisFeedrate.h"
#include "machine/machine/PostMachineConfig/MultiAxisRetractAndReconfigure.h"
#include "machine/machine/PostMachineConfig/MultiAxisSingularity.h"

namespace machine {

class MultiAxisPreferences : public MachineFeatureDefinitionImpl<MultiAxisPreferences, MachineFeatureDefinition> {
public:
  using Singularity = com::vantora::post::MultiAxisSingularity;
  using Feedrate = com::vantora::post::MultiAxisFeedrate;
  using RetractAndReconfigure = com::vantora::post::MultiAxisRetractAndReconfigure;

  /// What a file reader takes for a missing "cone": three degrees computed
  /// as 3 (pi / 180), one unit in the last place above the script-facing
  /// default. Both values are kept as they are.
  static constexpr double READ_DEFAULT_CONE = 0.05235987755982989;

  /// No virtual tool tip, tilted work planes on, no options.
  MultiAxisPreferences();
  /// Reads a "multiaxis" body; every key is optional. An option object is
  /// made only when its key is present, starting from the defaults of the
  /// file format. Throws std::runtime_error on a value of the wrong kind, on
  /// a word that is not known (the word followed by " is no supported"), and
  /// with "Expected a 3D vector." for a stock expansion that is not three
  /// numbers.
  MultiAxisPreferences(std::string const& featureId, Json::Value const& data);
  MultiAxisPreferences(CopyTag, MultiAxisPreferences const& other);

  static std::string featureTypeIdStatic();

  /// The two flags always; each option when present, with the keys that its
  /// modes make meaningful. A value without a word is written as null.
  Json::Value getPersistData() const override;

  bool useVirtualToolTip() const noexcept { return m_useVirtualToolTip; }
  void setUseVirtualToolTip(bool value) noexcept { m_useVirtualToolTip = value; }
  std::optional<Singularity> singularity() const { return m_singularity; }
  void setSingularity(Singularity const& value) { m_singularity = value; }
  std::optional<Feedrate> feedrateOptions() const { return m_feedrateOptions; }
  void setFeedrateOptions(Feedrate const& value) { m_feedrateOptions = value; }
  std::optional<RetractAndReconfigure> retractAndReconfigure() const { return m_retractAndReconfigure; }
  void setRetractAndReconfigure(RetractAndReconfigure const& value) { m_retractAndReconfigure = value; }
  bool useTiltedWorkplane() const noexcept { return m_useTiltedWorkplane; }
  void setUseTiltedWorkplane(bool value) noexcept { m_useTiltedWorkplane = value; }

private:
  bool m_useVirtualToolTip = false;
  std::optional<Singularity> m_singularity;
  std::optional<Feedrate> m_feedrateOptions;
  std::optional<RetractAndReconfigure> m_retractAndReconfigure;
  bool m_useTiltedWorkplane = true;
};

}  // namespace machine
