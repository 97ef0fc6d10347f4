#pragma once
// A terminal stream that writes the machine poses of a run as CSV, one row
// per AxisValues event:
//
//   pose,line,operation,section,X,Y,Z,A,C
//   1,18,1,1,-36,2.5,47.25,-20,0
//
// pose counts from 1; line is the stream file's line whose event produced
// the pose; operation is the last OperationId (0 before any); section counts
// the sections opened so far (0 before the first). The axis columns follow
// the last AxisOrdering, named by axis; a new ordering writes a new header
// row. Values are the shortest text that reads back to the same double
// ("nan" for an unsolved axis), independent of the locale.

#include <cstdio>
#include <filesystem>
#include <functional>

#include "NullSimulationStream.h"

namespace mtkit_tool {

class CsvPoseSimulationStream : public NullSimulationStream {
public:
  /// `lineSource` tells the input line being replayed.
  CsvPoseSimulationStream(std::filesystem::path const& path, std::function<long()> lineSource);
  ~CsvPoseSimulationStream() override;

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnOperationId(int id) override;
  void doOnSection(SectionType type) override;

  std::FILE* m_file = nullptr;
  std::function<long()> m_lineSource;
  long m_pose = 0;
  int m_operation = 0;
  int m_section = 0;
};

}  // namespace mtkit_tool
