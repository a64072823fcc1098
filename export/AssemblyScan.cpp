#include "export/AssemblyScan.h"

#include <algorithm>
#include <cstdint>

#include "export/WorkingTable.h"
#include "inventor/ApprenticeServer.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "resources/Icons.h"
#include "ui/Cursor.h"
#include "ui/MessageLoop.h"

namespace {

/// Everything that is no part is taken for an assembly, presentations and files without an extension too:
/// whether it has references is for the server to say.
bool IsPart(TextView file) {
  const auto upper = [](char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
  };
  return std::ranges::equal(FileExtension(file), TextView(u".IPT"), {}, upper);
}

}  // namespace

void TAssemblyScan::FirstOpenAssembly(const UnicodeString& datei) {
  InsertRoot(datei);
  ScanAssembly(datei);
}

void TAssemblyScan::InsertRoot(const UnicodeString& datei) {
  {
    const TApprenticeServer server;
    SetScreenCursor(TCursor::HourGlass);
    const TDocument document = server.OpenDocument(datei);
    OnRootOpened(document.DisplayName());
    InsertFile(fQuery, {ICON_ASSEMBLY, datei, document.DisplayName(), document.ReferencedFiles().Count(),
                        kRootParent});
    const UnicodeString drawing = ChangeFileExtension(datei, u".idw");
    if (FileExists(drawing)) {
      InsertFile(fQuery, {ICON_DRAWING, drawing, document.DisplayName(), document.ReferencedFiles().Count(),
                          kRootDrawingParent});
    }
    server.CloseServer();
  }
  SetScreenCursor(TCursor::Default);
}

void TAssemblyScan::ScanAssembly(const UnicodeString& datei) {
  {
    const TApprenticeServer server;
    SetScreenCursor(TCursor::HourGlass);
    const TDocument document = server.OpenDocument(datei);
    // The row entered last, once for the whole level. Where the root has a drawing beside it, that is the
    // drawing's: all references of the root then hang under its drawing, as designers are used to.
    const std::int64_t parent = fQuery.Field(u"AUTOID").AsInteger();
    const std::int32_t count = document.ReferencedFiles().Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      const UnicodeString file = document.ReferencedFiles().Item(i).FullFileName();
      const UnicodeString name = document.ReferencedFiles().Item(i).DisplayName();
      KeepAlive();
      if (IsPart(file)) {
        EnterPart(file, name, i, parent);
      } else {
        EnterAssembly(file, name, i, parent);
      }
    }
    server.CloseServer();
  }
  SetScreenCursor(TCursor::Default);
  OnLevelScanned();
}

void TAssemblyScan::EnterPart(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                              std::int64_t parent) {
  InsertFile(fQuery, {ICON_PART, file, name, index, parent});
  EnterDrawing(file, name, index, parent);
}

/// The drawing comes first here: the references hang under the row that is entered last, the assembly's own.
void TAssemblyScan::EnterAssembly(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                                  std::int64_t parent) {
  EnterDrawing(file, name, index, parent);
  InsertFile(fQuery, {ICON_ASSEMBLY, file, name, index, parent});
  ScanAssembly(file);
  // The level below has ended with the default cursor; this one is still at work.
  SetScreenCursor(TCursor::HourGlass);
}

void TAssemblyScan::EnterDrawing(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                                 std::int64_t parent) {
  const UnicodeString drawing = ChangeFileExtension(file, u".idw");
  if (FileExists(drawing)) InsertFile(fQuery, {ICON_DRAWING, drawing, name, index, parent});
}
