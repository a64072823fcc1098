#include "platform/TextFile.h"

#include "platform/Error.h"

namespace {

// The longest name that the classic file functions of the system take (MAX_PATH without the closing zero).
constexpr std::size_t kLongestFileName = 259;
constexpr char kCtrlZ = '\x1A';

TInputFile OpenInput(TextView name) {
  if (name.size() > kLongestFileName) throw InputOutputError(kInvalidFileName);
  return name.empty() ? TInputFile::StandardInput() : TInputFile::Open(name);
}

}  // namespace

TTextFile::TTextFile(TextView name) : fFile(OpenInput(name)) {}

/// Makes sure that there is a byte at fNext; false at the end. A Ctrl-Z is never passed, so that a pipe that
/// stays open after it does not hold the reader.
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
    if (byte != '\r') line.push_back(byte);
  }
  return TextFromAnsi(line);
}
