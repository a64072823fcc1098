#include <cstdio>
#include <exception>

#include "headless/Machine.h"
#include "zip/ZipArchive.h"

// pack_folder FOLDER ARCHIVE: writes a new archive of everything in the folder. Both are full paths.
int main(int count, char** arguments) {
  if (count != 3) {
    std::fputs("Usage: pack_folder FOLDER ARCHIVE\n", stderr);
    return 2;
  }
  headless::Machine().Root = "/";
  try {
    TZipArchive archive(TextFromUtf8(arguments[2]));
    archive.AddContents(TextFromUtf8(arguments[1]));
    archive.Close();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "pack_folder: %s\n", error.what());
    return 1;
  }
  return 0;
}
