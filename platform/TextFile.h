#pragma once

#include <array>
#include <string>

#include "platform/Files.h"
#include "platform/Text.h"

/// An 8-bit text file read line by line through the ANSI code page. Lines end with LF or CR LF, a CR before
/// anything else is dropped, Ctrl-Z ends the file. A line of more than 2 GB is an error.
class TTextFile {
 public:
  /// Opens `name`; the empty name stands for standard input. A file that cannot be opened is reported by the
  /// first read (code 104). Throws EError with code 3 for a name of more than 259 characters.
  explicit TTextFile(TextView name);

  /// The next line without its end; empty at the end of the file. Throws EError of kind InputOutput.
  UnicodeString ReadLine();
  /// Reads on where needed, so on a pipe it waits for the writer. Throws like ReadLine.
  bool AtEnd();

 private:
  bool Fill();

  TInputFile fFile;
  std::array<char, 4096> fBuffer{};
  std::size_t fNext = 0;
  std::size_t fFilled = 0;
  bool fEnded = false;
};
