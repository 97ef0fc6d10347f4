#include "CsvPoseSimulationStream.h"

#include <charconv>
#include <cmath>
#include <string>

namespace mtkit_tool {

CsvPoseSimulationStream::CsvPoseSimulationStream(std::filesystem::path const& path, std::function<long()> lineSource)
    : m_file(std::fopen(path.c_str(), "wb")), m_lineSource(std::move(lineSource)) {
  if (!m_file) setIsOk(false);
}

CsvPoseSimulationStream::~CsvPoseSimulationStream() {
  if (m_file) std::fclose(m_file);
}

void CsvPoseSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  std::string row = "pose,line,operation,section";
  for (int i = 0; i < ordering.size(); ++i) row += "," + ordering.axisName(i).name();
  row += "\n";
  std::fputs(row.c_str(), m_file);
  if (std::ferror(m_file)) setIsOk(false);
}

void CsvPoseSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  std::string row = std::to_string(++m_pose) + "," + std::to_string(m_lineSource ? m_lineSource() : 0) + "," +
                    std::to_string(m_operation) + "," + std::to_string(m_section);
  char number[32];
  for (Orvo::AxisValue const& value : values.values()) {
    double const v = value.value();
    row += ',';
    if (std::isnan(v)) {
      row += "nan";
    } else {
      row.append(number, std::to_chars(number, number + sizeof number, v).ptr);
    }
  }
  row += '\n';
  std::fputs(row.c_str(), m_file);
  if (std::ferror(m_file)) setIsOk(false);
}

void CsvPoseSimulationStream::doOnOperationId(int id) { m_operation = id; }

void CsvPoseSimulationStream::doOnSection(SectionType) { ++m_section; }

}  // namespace mtkit_tool
