#include "machine/machine/SimulationStreamTextFileReader.h"

#include <locale.h>

#include <charconv>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "util/utility/Basic.h"
#include "util/utility/math/Frame.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\SimulationStreamTextFileReader";

/// What strtod and strtol skip before a number (isspace in the "C" locale).
inline bool isNumberSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

/// What readString skips before a string, and what ends a bare token. A form
/// feed and a line feed are deliberately not in it.
inline bool isStringSpace(char c) noexcept { return c == '\t' || c == '\v' || c == '\r' || c == ' '; }

inline bool isOctal(char c) noexcept { return c >= '0' && c <= '7'; }

}  // namespace

namespace machine {

// The open file and a read buffer of our own, so that a line is found with
// memchr over a block instead of one stdio call per character. A POSIX open
// for reading never locks the writer out, so the writer may keep the file
// open and go on appending: that is all the sharing the follow mode needs.
struct SimulationStreamTextFileReader::Input {
  explicit Input(std::filesystem::path const& path) : file(std::fopen(path.c_str(), "rb")) {}
  ~Input() {
    if (file) std::fclose(file);
  }
  Input(Input const&) = delete;
  Input& operator=(Input const&) = delete;

  std::FILE* file;
  std::size_t position = 0;
  std::size_t end = 0;
  char buffer[65536];
};

struct SimulationStreamTextFileReader::NumericLocale {
  NumericLocale() : handle(newlocale(LC_NUMERIC_MASK, "C", locale_t())) {}
  ~NumericLocale() {
    if (handle) freelocale(handle);
  }
  NumericLocale(NumericLocale const&) = delete;
  NumericLocale& operator=(NumericLocale const&) = delete;

  locale_t handle;
};

SimulationStreamTextFileReader::SimulationStreamTextFileReader(std::shared_ptr<SimulationStream> target)
    : m_locale(std::make_unique<NumericLocale>()), m_stream(std::move(target)) {}

SimulationStreamTextFileReader::~SimulationStreamTextFileReader() = default;

void SimulationStreamTextFileReader::setIsPostProcessingCompletedCallback(std::function<bool()> callback) {
  m_isPostProcessingCompletedCallback = std::move(callback);
}

bool SimulationStreamTextFileReader::isPostProcessingCompleted() const {
  return !m_isPostProcessingCompletedCallback || m_isPostProcessingCompletedCallback();
}

void SimulationStreamTextFileReader::setSleepFunction(SleepFunction function) { m_sleep = std::move(function); }

void SimulationStreamTextFileReader::sleep(std::chrono::seconds duration) const {
  if (m_sleep)
    m_sleep(duration);
  else
    std::this_thread::sleep_for(duration);
}

void SimulationStreamTextFileReader::fail(Failure failure, long line, std::string reason) {
  setIsOk(false);
  if (m_failure != Failure::NONE) return;
  m_failure = failure;
  m_failureLine = line;
  m_failureReason = std::move(reason);
}

bool SimulationStreamTextFileReader::getline(Input& input, std::string& line) {
  line.clear();
  bool completed = false;
  for (;;) {
    if (input.position == input.end) {
      std::size_t const got = std::fread(input.buffer, 1, sizeof input.buffer, input.file);
      input.position = 0;
      input.end = got;
      if (got == 0) {
        // A read failure that is not the end of the file ends it all.
        if (std::ferror(input.file)) return false;
        // The end of the file: after completion has been reported, this was
        // the one more pass, and a partial line in `line` is lost.
        if (completed) return false;
        if (isPostProcessingCompleted()) {
          completed = true;
        } else {
          sleep(std::chrono::seconds(1));
        }
        // Forget the end of file, so that the next read asks the system
        // again and sees what the writer has added.
        std::clearerr(input.file);
        continue;
      }
    }
    char const* const start = input.buffer + input.position;
    std::size_t const available = input.end - input.position;
    auto const* const lineFeed = static_cast<char const*>(std::memchr(start, '\n', available));
    if (lineFeed) {
      line.append(start, static_cast<std::size_t>(lineFeed - start));
      input.position += static_cast<std::size_t>(lineFeed - start) + 1;
      ++m_lineNumber;
      return true;
    }
    // A partial line waits here for the rest of it.
    line.append(start, available);
    input.position = input.end;
  }
}

void SimulationStreamTextFileReader::import(std::filesystem::path const& path) {
  if (!m_isOk) return;
  auto input = std::make_unique<Input>(path);
  if (!input->file) {
    fail(Failure::CANNOT_OPEN, 0, "cannot open the file");
    return;
  }
  std::string line;
  // The header is looked at even if its line feed never came: then the
  // file holds nothing more to read anyway.
  getline(*input, line);
  readFileSignature(line.data());
  if (!m_isOk) return;

  using Reader = void (SimulationStreamTextFileReader::*)(char*);
  struct Record {
    std::string_view keyword;
    Reader read;
  };
  // The most frequent records first.
  static Record const records[] = {
      {"Linear:", &SimulationStreamTextFileReader::readLinear},
      {"AxisValues:", &SimulationStreamTextFileReader::readAxisValues},
      {"Linear5D:", &SimulationStreamTextFileReader::readLinear5D},
      {"Rapid:", &SimulationStreamTextFileReader::readRapid},
      {"Rapid5D:", &SimulationStreamTextFileReader::readRapid5D},
      {"Helical:", &SimulationStreamTextFileReader::readHelical},
      {"NcOutput:", &SimulationStreamTextFileReader::readNcOutput},
      {"ApiVersion:", &SimulationStreamTextFileReader::readApiVersion},
      {"AxisOrdering:", &SimulationStreamTextFileReader::readAxisOrdering},
      {"NcProgramId:", &SimulationStreamTextFileReader::readNcProgramId},
      {"OperationId:", &SimulationStreamTextFileReader::readOperationId},
      {"MachineId:", &SimulationStreamTextFileReader::readMachineId},
      {"Command:", &SimulationStreamTextFileReader::readCommand},
      {"PatternOpen:", &SimulationStreamTextFileReader::readPatternOpen},
      {"PatternClose:", &SimulationStreamTextFileReader::readPatternClose},
      {"PatternChildInstance:", &SimulationStreamTextFileReader::readPatternChildInstance},
      {"Section:", &SimulationStreamTextFileReader::readSection},
      {"SectionEnd:", &SimulationStreamTextFileReader::readSectionEnd},
      {"WorkOffset:", &SimulationStreamTextFileReader::readWorkOffset},
      {"Warning:", &SimulationStreamTextFileReader::readIssue},
      {"Error:", &SimulationStreamTextFileReader::readIssue},
      {"NCContext:", &SimulationStreamTextFileReader::readNCContext},
      {"NCTool:", &SimulationStreamTextFileReader::readNCTool},
      {"SimGroup:", &SimulationStreamTextFileReader::readSimGroup},
      {"SimGroupEnd:", &SimulationStreamTextFileReader::readSimGroupEnd},
      {"TaggedFrame:", &SimulationStreamTextFileReader::readTaggedFrame},
      {"SpindleSpeed:", &SimulationStreamTextFileReader::readSpindleSpeed},
  };

  std::string keyword;
  while (getline(*input, line)) {
    char* position = line.data();
    readString(position, keyword);
    if (keyword.empty()) continue;
    for (Record const& record : records) {
      if (record.keyword.size() == keyword.size() &&
          std::memcmp(record.keyword.data(), keyword.data(), keyword.size()) == 0) {
        (this->*record.read)(position);
        break;
      }
    }
    if (!m_isOk) return;
  }
}

int SimulationStreamTextFileReader::readInt(char*& position) noexcept {
  // strtol's reading, saturated to the range of an int.
  char* p = position;
  while (isNumberSpace(*p)) ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  if (*p < '0' || *p > '9') return 0;
  long long value = 0;
  for (; *p >= '0' && *p <= '9'; ++p)
    value = value <= (LLONG_MAX - 9) / 10 ? value * 10 + (*p - '0') : LLONG_MAX;
  position = p;
  if (negative) value = -value;
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

unsigned int SimulationStreamTextFileReader::readUnsigned(char*& position) noexcept {
  // strtoul's reading (a minus sign negates modulo 2^32), kept to 32 bits.
  char* p = position;
  while (isNumberSpace(*p)) ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  if (*p < '0' || *p > '9') return 0;
  unsigned long long value = 0;
  bool overflow = false;
  for (; *p >= '0' && *p <= '9'; ++p) {
    if (value > (ULLONG_MAX - 9) / 10) overflow = true;
    if (!overflow) value = value * 10 + static_cast<unsigned>(*p - '0');
  }
  position = p;
  if (overflow || value > UINT_MAX) return UINT_MAX;
  auto const result = static_cast<unsigned int>(value);
  return negative ? 0u - result : result;
}

double SimulationStreamTextFileReader::readDouble(char*& position) const noexcept {
  char* p = position;
  while (isNumberSpace(*p)) ++p;
  // The fast path: std::from_chars, locale-free, reads all that "%.17g"
  // writes, "nan", "-nan", "inf" and "-inf" included. Where it stops short
  // of the field's end, or cannot take the text (a plus sign, hexadecimal,
  // a value out of range), strtod in the "C" locale decides, so that any
  // text reads exactly as strtod would read it.
  if (*p != '+') {
    double value = 0.0;
    char const* const end = p + std::strlen(p);
    auto const result = std::from_chars(p, end, value, std::chars_format::general);
    if (result.ec == std::errc() && (*result.ptr == '\0' || isNumberSpace(*result.ptr))) {
      position = const_cast<char*>(result.ptr);
      return value;
    }
  }
  char* end = p;
  double const value = strtod_l(p, &end, m_locale->handle);
  if (end != p) position = end;
  return value;
}

void SimulationStreamTextFileReader::readString(char*& position, std::string& out) {
  out.clear();
  char* p = position;
  while (isStringSpace(*p)) ++p;
  if (*p == '\0') {
    position = p;
    return;
  }
  if (*p != '"') {
    char* const start = p;
    while (*p != '\0' && !isStringSpace(*p)) ++p;
    out.assign(start, static_cast<std::size_t>(p - start));
    position = p;
    return;
  }
  ++p;
  for (;;) {
    char const c = *p;
    if (c == '\0') break;
    if (c == '"') {
      ++p;
      break;
    }
    if (c != '\\') {
      out.push_back(c);
      ++p;
      continue;
    }
    char const next = p[1];
    // A backslash at the very end of the line ends the string on itself.
    if (next == '\0') break;
    switch (next) {
      case 'a': out.push_back('\a'); p += 2; continue;
      case 'b': out.push_back('\b'); p += 2; continue;
      case 'e': out.push_back('\x1b'); p += 2; continue;
      case 'f': out.push_back('\f'); p += 2; continue;
      case 'n': out.push_back('\n'); p += 2; continue;
      case 'r': out.push_back('\r'); p += 2; continue;
      case 't': out.push_back('\t'); p += 2; continue;
      case 'v': out.push_back('\v'); p += 2; continue;
      case '\\': out.push_back('\\'); p += 2; continue;
      case '"': out.push_back('"'); p += 2; continue;
      default: break;
    }
    if (isOctal(next)) {
      // One to three digits, as many as there are.
      p += 1;
      unsigned value = 0;
      for (int digits = 0; digits < 3 && isOctal(*p); ++digits, ++p) value = value * 8 + static_cast<unsigned>(*p - '0');
      out.push_back(static_cast<char>(value & 0xFFu));
      continue;
    }
    // Not an escape: both characters stay.
    out.push_back('\\');
    out.push_back(next);
    p += 2;
  }
  position = p;
}

Orvo::Helix SimulationStreamTextFileReader::readHelix(char*& position) const {
  double v[Orvo::Helix::kNumStoredValues];
  for (double& value : v) value = readDouble(position);
  return Orvo::Helix(Orvo::Vector3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]),
                     Orvo::Vector3D(v[6], v[7], v[8]), Orvo::Vector3D(v[9], v[10], v[11]), v[12], v[13], v[14]);
}

void SimulationStreamTextFileReader::readFileSignature(char* rest) {
  readString(rest, m_string);
  if (m_string != "TextFileSimulationStream:") {
    fail(Failure::NOT_A_STREAM_FILE, 1, "its first line is not \"TextFileSimulationStream: 1 0\"");
    return;
  }
  int const major = readInt(rest);
  int const minor = readInt(rest);
  if (major != 1 || minor >= 1)
    fail(Failure::UNSUPPORTED_VERSION, 1,
         "the file is in format " + std::to_string(major) + "." + std::to_string(minor) + ", and only 1.0 is read");
}

void SimulationStreamTextFileReader::readApiVersion(char* rest) {
  int const major = readInt(rest);
  int const minor = readInt(rest);
  m_stream->onApiVersion(major, minor);
}

void SimulationStreamTextFileReader::readAxisOrdering(char* rest) {
  int const version = readInt(rest);
  int const count = readInt(rest);
  if ((version != 1 && version != 2) || count == 0) return;
  // Each axis takes at least one byte of the line. A count beyond what is
  // left cannot be meant, and taken at its word it would let one short line
  // ask for billions of empty axes; such a record is skipped like a
  // malformed one. A negative count describes no ordering either.
  if (count < 0 || static_cast<std::size_t>(count) > std::strlen(rest)) return;
  Orvo::AxisOrdering ordering(count);
  for (int i = 0; i < count; ++i) {
    if (version == 2) {
      readString(rest, m_string);
      readString(rest, m_string2);
      ordering.setAxisInfo(i, Orvo::AxisInfo(Orvo::MachinePartId(m_string2), Orvo::AxisName(m_string)));
    } else {
      readString(rest, m_string);
      ordering.setAxisInfo(i, Orvo::AxisInfo(Orvo::MachinePartId(""), Orvo::AxisName(m_string)));
    }
  }
  m_stream->onAxisOrdering(ordering);
}

void SimulationStreamTextFileReader::readAxisValues(char* rest) {
  int const version = readInt(rest);
  int const count = readInt(rest);
  if (version != 1 || count == 0) return;
  int const expected = m_stream->numAxesInOrdering();
  if (!(expected > 0)) {
    fail(Failure::AXIS_VALUES_WITHOUT_ORDERING, m_lineNumber, "axis values come before any axis ordering");
    return;
  }
  if (count != expected) {
    fail(Failure::AXIS_VALUES_COUNT, m_lineNumber,
         "the number of axis values does not fit the axis ordering (" + std::to_string(expected) +
             " axes): the record has " + std::to_string(count));
    return;
  }
  std::vector<Orvo::AxisValue> values;
  values.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) values.emplace_back(readDouble(rest));
  m_stream->onAxisValues(Orvo::AxisValues(std::move(values)));
}

void SimulationStreamTextFileReader::readNcOutput(char* rest) {
  if (readInt(rest) != 1) return;
  readString(rest, m_string);
  m_stream->onNcOutput(m_string);
}

void SimulationStreamTextFileReader::readNcProgramId(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onNcProgramId(readInt(rest));
}

void SimulationStreamTextFileReader::readOperationId(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onOperationId(readInt(rest));
}

void SimulationStreamTextFileReader::readMachineId(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onMachineId(readInt(rest));
}

void SimulationStreamTextFileReader::readCommand(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onCommand(SimulationStreamCommand(readInt(rest)));
}

void SimulationStreamTextFileReader::readPatternOpen(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onPatternOpen(readInt(rest));
}

void SimulationStreamTextFileReader::readPatternClose(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onPatternClose(readInt(rest));
}

void SimulationStreamTextFileReader::readPatternChildInstance(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onPatternChildInstance(readInt(rest));
}

void SimulationStreamTextFileReader::readSection(char* rest) {
  if (readInt(rest) != 1) return;
  readString(rest, m_string);
  // No word at all is an operation section; an unknown word sends nothing.
  if (m_string.empty() || m_string == "Operation")
    m_stream->onSection(SimulationStream::SectionType::Operation);
  else if (m_string == "BeforeOperation")
    m_stream->onSection(SimulationStream::SectionType::BeforeOperation);
  else if (m_string == "AfterOperation")
    m_stream->onSection(SimulationStream::SectionType::AfterOperation);
  else if (m_string == "NoTool")
    m_stream->onSection(SimulationStream::SectionType::NoTool);
}

void SimulationStreamTextFileReader::readSectionEnd(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onSectionEnd();
}

void SimulationStreamTextFileReader::readWorkOffset(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onWorkOffset(readInt(rest));
}

// "Warning:" and "Error:" alike: the code decides the severity.
void SimulationStreamTextFileReader::readIssue(char* rest) {
  if (readInt(rest) != 1) return;
  int const code = readInt(rest);
  readString(rest, m_string);
  m_stream->onIssue(static_cast<SimulationStream::IssueCode>(code), m_string);
}

// The file holds no context or tool, only their keyword and version.
void SimulationStreamTextFileReader::readNCContext(char* rest) { readInt(rest); }

void SimulationStreamTextFileReader::readNCTool(char* rest) { readInt(rest); }

void SimulationStreamTextFileReader::readSimGroup(char* rest) {
  if (readInt(rest) != 1) return;
  readString(rest, m_string);
  m_stream->onSimGroup(m_string);
}

void SimulationStreamTextFileReader::readSimGroupEnd(char* rest) {
  if (readInt(rest) != 1) return;
  readString(rest, m_string);
  m_stream->onSimGroupEnd(m_string);
}

void SimulationStreamTextFileReader::readTaggedFrame(char* rest) {
  if (readInt(rest) != 1) return;
  readString(rest, m_string);
  readString(rest, m_string2);
  double v[9];
  for (double& value : v) value = readDouble(rest);
  auto const frame = Orvo::Frame::make(Orvo::Point3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]),
                                       Orvo::Vector3D(v[6], v[7], v[8]));
  m_stream->onTaggedFrame(Orvo::TaggedFrame(m_string, m_string2, frame ? *frame : Orvo::Frame(Orvo::IdentityTag{})));
}

void SimulationStreamTextFileReader::readLinear(char* rest) {
  if (readInt(rest) != 1) return;
  double const x = readDouble(rest);
  double const y = readDouble(rest);
  double const z = readDouble(rest);
  double const feed = readDouble(rest);
  MotionSettings settings;
  settings.setFlags(readUnsigned(rest));
  m_stream->onLinear(Orvo::Point3D(x, y, z), feed, settings);
}

void SimulationStreamTextFileReader::readRapid(char* rest) {
  if (readInt(rest) != 1) return;
  double const x = readDouble(rest);
  double const y = readDouble(rest);
  double const z = readDouble(rest);
  MotionSettings settings;
  settings.setFlags(readUnsigned(rest));
  m_stream->onRapid(Orvo::Point3D(x, y, z), settings);
}

void SimulationStreamTextFileReader::readHelical(char* rest) {
  if (readInt(rest) != 1) return;
  Orvo::Helix const helix = readHelix(rest);
  double const x = readDouble(rest);
  double const y = readDouble(rest);
  double const z = readDouble(rest);
  Orvo::Point3D const end(x, y, z);
  double const feed = readDouble(rest);
  MotionSettings settings;
  settings.setFlags(readUnsigned(rest));
  ORVO_ASSERT(coincident(end, helix.getEnd().asPoint(), Orvo::LinearTolerance(0.01)));
  m_stream->onHelical(helix, end, feed, settings);
}

void SimulationStreamTextFileReader::readLinear5D(char* rest) {
  if (readInt(rest) != 1) return;
  double v[7];
  for (double& value : v) value = readDouble(rest);
  MotionSettings settings;
  settings.setFlags(readUnsigned(rest));
  m_stream->onLinear5D(Orvo::Point3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]), v[6], settings);
}

void SimulationStreamTextFileReader::readRapid5D(char* rest) {
  if (readInt(rest) != 1) return;
  double v[6];
  for (double& value : v) value = readDouble(rest);
  MotionSettings settings;
  settings.setFlags(readUnsigned(rest));
  m_stream->onRapid5D(Orvo::Point3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]), settings);
}

void SimulationStreamTextFileReader::readSpindleSpeed(char* rest) {
  if (readInt(rest) != 1) return;
  m_stream->onSpindleSpeed(readDouble(rest));
}

}  // namespace machine
