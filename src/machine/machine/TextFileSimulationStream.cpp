#include "machine/machine/TextFileSimulationStream.h"

#include <locale.h>

#include <charconv>
#include <cstdio>
#include <cstring>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\TextFileSimulationStream";

/// The stdio buffer: a reader of a growing file sees data in steps of this.
constexpr std::size_t kFileBufferSize = 32768;

// Builds the bytes of a record on the stack and hands them to stdio in one
// call, instead of one locked stdio call per field. Numbers go through
// std::to_chars: "%.17g" as printf writes it in the "C" locale, with no
// locale consulted and no format string parsed.
class LineWriter {
public:
  explicit LineWriter(std::FILE* file) noexcept : m_file(file) {}
  ~LineWriter() { flush(); }
  LineWriter(LineWriter const&) = delete;
  LineWriter& operator=(LineWriter const&) = delete;

  LineWriter& text(std::string_view text) {
    if (text.size() > room()) {
      flush();
      if (text.size() > room()) {
        std::fwrite(text.data(), 1, text.size(), m_file);
        return *this;
      }
    }
    std::memcpy(m_position, text.data(), text.size());
    m_position += text.size();
    return *this;
  }
  LineWriter& character(char c) {
    if (room() < 1) flush();
    *m_position++ = c;
    return *this;
  }
  /// "%.17g".
  LineWriter& number(double value) {
    if (room() < kNumberRoom) flush();
    m_position = std::to_chars(m_position, m_end, value, std::chars_format::general, 17).ptr;
    return *this;
  }
  /// "%d".
  LineWriter& integer(int value) {
    if (room() < kNumberRoom) flush();
    m_position = std::to_chars(m_position, m_end, value).ptr;
    return *this;
  }
  /// "%u".
  LineWriter& unsignedInteger(unsigned int value) {
    if (room() < kNumberRoom) flush();
    m_position = std::to_chars(m_position, m_end, value).ptr;
    return *this;
  }
  /// A blank, then "%.17g".
  LineWriter& field(double value) { return character(' ').number(value); }

  void flush() {
    if (m_position != m_buffer) std::fwrite(m_buffer, 1, static_cast<std::size_t>(m_position - m_buffer), m_file);
    m_position = m_buffer;
  }

private:
  /// Enough for any "%.17g" ("-1.2345678901234567e-308" is 24 bytes).
  static constexpr std::size_t kNumberRoom = 32;

  std::size_t room() const noexcept { return static_cast<std::size_t>(m_end - m_position); }

  std::FILE* m_file;
  char m_buffer[512];
  char* m_position = m_buffer;
  char* const m_end = m_buffer + sizeof m_buffer;
};

}  // namespace

namespace machine {

// The locale is made with the file and freed with it, although the numbers
// go through std::to_chars, which yields printf's "C" locale bytes without
// consulting any locale at all. The stdio buffer is ours because the C
// library takes a size only together with the memory; it lives here, so it
// is freed only after the file is closed.
struct TextFileSimulationStream::File {
  explicit File(std::filesystem::path const& path)
      : locale(newlocale(LC_NUMERIC_MASK, "C", locale_t())), handle(std::fopen(path.c_str(), "wb")) {
    if (handle) std::setvbuf(handle, buffer, _IOFBF, sizeof buffer);
  }
  ~File() {
    if (handle) std::fclose(handle);
    if (locale) freelocale(locale);
  }
  File(File const&) = delete;
  File& operator=(File const&) = delete;

  locale_t locale;
  std::FILE* handle;
  char buffer[kFileBufferSize];
};

TextFileSimulationStream::TextFileSimulationStream(std::filesystem::path const& path) {
  auto file = std::make_unique<File>(path);
  if (file->handle) {
    m_file = std::move(file);
    std::fputs("TextFileSimulationStream: 1 0\n", m_file->handle);
  }
  checkStream();
}

TextFileSimulationStream::~TextFileSimulationStream() = default;

void TextFileSimulationStream::checkStream() {
  if (!m_file || std::ferror(m_file->handle)) setIsOk(false);
}

void TextFileSimulationStream::writeEscaped(File& file, std::string_view text) {
  static char const octal[] = "01234567";
  m_escapeBuffer.clear();
  m_escapeBuffer.push_back('"');
  for (char const c : text) {
    auto const byte = static_cast<unsigned char>(c);
    switch (byte) {
      case 7: m_escapeBuffer += "\\a"; break;
      case 8: m_escapeBuffer += "\\b"; break;
      case 12: m_escapeBuffer += "\\f"; break;
      case 10: m_escapeBuffer += "\\n"; break;
      case 13: m_escapeBuffer += "\\r"; break;
      case 9: m_escapeBuffer += "\\t"; break;
      case 11: m_escapeBuffer += "\\v"; break;
      case '\\': m_escapeBuffer += "\\\\"; break;
      case '"': m_escapeBuffer += "\\\""; break;
      default:
        if (byte >= 32 && byte <= 126) {
          m_escapeBuffer.push_back(c);
        } else {
          // Always three digits, so that a digit that follows is not taken in.
          m_escapeBuffer.push_back('\\');
          m_escapeBuffer.push_back(octal[(byte >> 6) & 7]);
          m_escapeBuffer.push_back(octal[(byte >> 3) & 7]);
          m_escapeBuffer.push_back(octal[byte & 7]);
        }
        break;
    }
  }
  m_escapeBuffer.push_back('"');
  std::fwrite(m_escapeBuffer.data(), 1, m_escapeBuffer.size(), file.handle);
}

void TextFileSimulationStream::writeFrame(File& file, Orvo::Frame const& frame) {
  Orvo::Point3D const o = frame.origin();
  Orvo::Vector3D const x = frame.xAxis();
  Orvo::Vector3D const z = frame.zAxis();
  LineWriter line(file.handle);
  line.number(o.x).field(o.y).field(o.z).field(x.x).field(x.y).field(x.z).field(z.x).field(z.y).field(z.z);
}

void TextFileSimulationStream::writeHelix(File& file, Orvo::Helix const& helix) {
  auto const values = helix.storedValues();
  LineWriter line(file.handle);
  line.number(values[0]);
  for (std::size_t i = 1; i < values.size(); ++i) line.field(values[i]);
}

void TextFileSimulationStream::doOnApiVersion(int major, int minor) {
  if (!m_file) return;
  LineWriter(m_file->handle).text("ApiVersion: ").integer(major).character(' ').integer(minor).character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  if (!m_file) return;
  LineWriter(m_file->handle).text("AxisOrdering: 2 ").integer(ordering.size());
  for (int i = 0; i < ordering.size(); ++i) {
    std::fputc(' ', m_file->handle);
    writeEscaped(*m_file, ordering.axisName(i).name());
    std::fputc(' ', m_file->handle);
    writeEscaped(*m_file, ordering.machinePartId(i).c_str());
  }
  std::fputc('\n', m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  if (!m_file) return;
  {
    LineWriter line(m_file->handle);
    line.text("AxisValues: 1 ").integer(values.size());
    for (Orvo::AxisValue const& value : values.values()) line.field(value.value());
    line.character('\n');
  }
  checkStream();
}

void TextFileSimulationStream::doOnNcOutput(std::string const& text) {
  if (!m_file) return;
  std::fputs("NcOutput: 1 ", m_file->handle);
  writeEscaped(*m_file, text);
  std::fputc('\n', m_file->handle);
  checkStream();
}

// The records of one integer field.
#define MTKIT_WRITE_INT_RECORD(prefix, value)                               \
  do {                                                                      \
    if (!m_file) return;                                                    \
    LineWriter(m_file->handle).text(prefix).integer(value).character('\n'); \
    checkStream();                                                          \
  } while (false)

void TextFileSimulationStream::doOnNcProgramId(int id) { MTKIT_WRITE_INT_RECORD("NcProgramId: 1 ", id); }
void TextFileSimulationStream::doOnOperationId(int id) { MTKIT_WRITE_INT_RECORD("OperationId: 1 ", id); }
void TextFileSimulationStream::doOnMachineId(int id) { MTKIT_WRITE_INT_RECORD("MachineId: 1 ", id); }
void TextFileSimulationStream::doOnCommand(SimulationStreamCommand const& command) {
  MTKIT_WRITE_INT_RECORD("Command: 1 ", static_cast<int>(command.command()));
}
void TextFileSimulationStream::doOnPatternOpen(int id) { MTKIT_WRITE_INT_RECORD("PatternOpen: 1 ", id); }
void TextFileSimulationStream::doOnPatternClose(int id) { MTKIT_WRITE_INT_RECORD("PatternClose: 1 ", id); }
void TextFileSimulationStream::doOnPatternChildInstance(int instance) {
  MTKIT_WRITE_INT_RECORD("PatternChildInstance: 1 ", instance);
}
void TextFileSimulationStream::doOnWorkOffset(int offset) { MTKIT_WRITE_INT_RECORD("WorkOffset: 1 ", offset); }

#undef MTKIT_WRITE_INT_RECORD

void TextFileSimulationStream::doOnSection(SectionType type) {
  if (!m_file) return;
  std::fputs("Section: 1", m_file->handle);
  // Any other value gets no word and, as it stands, no line feed either.
  switch (type) {
    case SectionType::Operation: std::fputs(" Operation\n", m_file->handle); break;
    case SectionType::BeforeOperation: std::fputs(" BeforeOperation\n", m_file->handle); break;
    case SectionType::AfterOperation: std::fputs(" AfterOperation\n", m_file->handle); break;
    case SectionType::NoTool: std::fputs(" NoTool\n", m_file->handle); break;
    default: break;
  }
  checkStream();
}

void TextFileSimulationStream::doOnSectionEnd() {
  if (!m_file) return;
  std::fputs("SectionEnd: 1\n", m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  if (!m_file) return;
  // The keyword is for the human reader; the reader of the file decides the
  // severity anew from the code.
  char const* const keyword = severityOfIssue(code).isWarning() ? "Warning: 1 " : "Error: 1 ";
  LineWriter(m_file->handle).text(keyword).integer(static_cast<int>(code)).character(' ');
  writeEscaped(*m_file, message);
  std::fputc('\n', m_file->handle);
  checkStream();
}

// Only the keyword: the contents of a context and a tool are not carried.
void TextFileSimulationStream::doOnNCContext(Orvo::NCContext const&) {
  if (!m_file) return;
  std::fputs("NCContext: 1\n", m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnNCTool(Orvo::NCTool const&) {
  if (!m_file) return;
  std::fputs("NCTool: 1\n", m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnSimGroup(std::string const& name) {
  if (!m_file) return;
  std::fputs("SimGroup: 1 ", m_file->handle);
  writeEscaped(*m_file, name);
  std::fputc('\n', m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnSimGroupEnd(std::string const& name) {
  if (!m_file) return;
  std::fputs("SimGroupEnd: 1 ", m_file->handle);
  writeEscaped(*m_file, name);
  std::fputc('\n', m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) {
  if (!m_file) return;
  std::fputs("TaggedFrame: 1 ", m_file->handle);
  writeEscaped(*m_file, frame.tag());
  std::fputc(' ', m_file->handle);
  writeEscaped(*m_file, frame.baseFrameTag());
  std::fputc(' ', m_file->handle);
  writeFrame(*m_file, frame.frame());
  std::fputc('\n', m_file->handle);
  checkStream();
}

void TextFileSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) {
  if (!m_file) return;
  LineWriter(m_file->handle)
      .text("Linear: 1")
      .field(target.x)
      .field(target.y)
      .field(target.z)
      .field(feed)
      .character(' ')
      .unsignedInteger(settings.flags())
      .character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
  if (!m_file) return;
  LineWriter(m_file->handle)
      .text("Rapid: 1")
      .field(target.x)
      .field(target.y)
      .field(target.z)
      .character(' ')
      .unsignedInteger(settings.flags())
      .character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                           MotionSettings const& settings) {
  if (!m_file) return;
  std::fputs("Helical: 1 ", m_file->handle);
  writeHelix(*m_file, helix);
  LineWriter(m_file->handle)
      .field(end.x)
      .field(end.y)
      .field(end.z)
      .field(feed)
      .character(' ')
      .unsignedInteger(settings.flags())
      .character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                                            MotionSettings const& settings) {
  if (!m_file) return;
  LineWriter(m_file->handle)
      .text("Linear5D: 1")
      .field(target.x)
      .field(target.y)
      .field(target.z)
      .field(toolAxis.x)
      .field(toolAxis.y)
      .field(toolAxis.z)
      .field(feed)
      .character(' ')
      .unsignedInteger(settings.flags())
      .character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                           MotionSettings const& settings) {
  if (!m_file) return;
  LineWriter(m_file->handle)
      .text("Rapid5D: 1")
      .field(target.x)
      .field(target.y)
      .field(target.z)
      .field(toolAxis.x)
      .field(toolAxis.y)
      .field(toolAxis.z)
      .character(' ')
      .unsignedInteger(settings.flags())
      .character('\n');
  checkStream();
}

// A movement in NC code needs the solver to mean anything; a file carries
// what comes after it.
void TextFileSimulationStream::doOnNcCodeMovement(NcCodeMovement const&) {
  if (Orvo::_debug::isTesting())
    Orvo::_debug::failTestForAssert("Sending `NcCodeMovement`s through a sim stream text file is not implemented.",
                                    orvoAssertSourcePath, __LINE__);
}

void TextFileSimulationStream::doOnTCPCoordMode(bool) {}

void TextFileSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const&) {}

void TextFileSimulationStream::doOnRetractAlongToolAxisToLimit() {
  if (Orvo::_debug::isTesting())
    Orvo::_debug::failTestForAssert(
        "Sending `RetractAlongToolAxisToLimit`s through a sim stream text file is not implemented.",
        orvoAssertSourcePath, __LINE__);
}

void TextFileSimulationStream::doOnSpindleSpeed(double speed) {
  if (!m_file) return;
  LineWriter(m_file->handle).text("SpindleSpeed: 1").field(speed).character('\n');
  checkStream();
}

void TextFileSimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) {}

}  // namespace machine
