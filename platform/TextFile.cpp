#include "platform/TextFile.h"

#include <cstdint>
#include <limits>

#include "platform/Error.h"

namespace {

// The longest name that the classic file functions of the system take (MAX_PATH without the closing zero).
constexpr std::size_t kLongestFileName = 259;
constexpr char kCtrlZ = '\x1A';
// More characters than the system converts at a time.
constexpr std::size_t kLongestLine = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kFileTooLarge = 223;  // ERROR_FILE_TOO_LARGE
constexpr auto kLineTooLong = u"Eine Zeile der Datei ist länger als 2 GB.";

TInputFile OpenInput(TextView name) {
  if (name.size() > kLongestFileName) throw InputOutputError(kInvalidFileName);
  return name.empty() ? TInputFile::StandardInput() : TInputFile::Open(name);
}

}  // namespace

TTextFile::TTextFile(TextView name) : fFile(OpenInput(name)) {}

/// Makes sure that there is a byte at fNext; false at the end. Nothing after a Ctrl-Z is read: the pipe that
/// it comes from may stay open.
bool TTextFile::Fill() {
  if (fEnded) return false;
  if (fNext == fFilled) {
    if (!fFile.IsOpen()) throw InputOutputError(kNotOpenForInput);
    fNext = 0;
    fFilled = 0;
    fFilled = fFile.Read(fBuffer);
  }
  fEnded = fFilled == 0 || fBuffer[fNext] == kCtrlZ;
  return !fEnded;
}

bool TTextFile::AtEnd() {
  return !Fill();
}

UnicodeString TTextFile::ReadLine() {
  std::string line;
  while (Fill()) {
    const char byte = fBuffer[fNext++];
    if (byte == '\n') break;
    if (byte == '\r') continue;
    if (line.size() == kLongestLine) throw EError(TErrorKind::InputOutput, kFileTooLarge, kLineTooLong);
    line.push_back(byte);
  }
  return TextFromAnsi(line);
}
