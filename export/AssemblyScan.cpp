#include "export/AssemblyScan.h"

#include <algorithm>
#include <cstdint>
#include <forward_list>
#include <string>
#include <unordered_set>

#include "export/WorkingTable.h"
#include "inventor/ApprenticeServer.h"
#include "platform/Error.h"
#include "platform/FileOperations.h"
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

TDocument Open(const TApprenticeServer& server, const UnicodeString& datei) {
  SetScreenCursor(TCursor::HourGlass);
  return server.OpenDocument(datei);
}

/// One assembly whose references are being entered, with a server of its own.
struct TLevel {
  TLevel(const UnicodeString& datei, std::int64_t parent)
      : Document(Open(Server, datei)), Parent(parent), Count(Document.ReferencedFiles().Count()) {}

  TApprenticeServer Server;
  TDocument Document;  // after its server: it goes first
  std::int64_t Parent;
  std::int32_t Count;
  std::int32_t Entered = 0;
};

/// The same for all spellings of the path of one file.
std::string FileKey(const UnicodeString& file) {
  const std::optional<TFileIdentity> identity = IdentityOf(file);
  if (!identity) return SameTextKey(NormalisedPath(file));
  return std::to_string(identity->Volume) + ":" + std::to_string(identity->Index);
}

/// The assemblies from the one that is being read up to the root. Not on the machine's own stack: a chain of
/// ten thousand would not fit there.
class TLevels {
 public:
  bool Empty() const { return fLevels.empty(); }
  TLevel& Innermost() { return fLevels.front(); }
  void Enter(const UnicodeString& datei, std::int64_t parent) {
    std::string key = FileKey(datei);
    if (fKeys.contains(key)) {
      constexpr std::int32_t kCircularDependency = 1059;  // the system's code for it
      throw EError(TErrorKind::InputOutput, kCircularDependency,
                   u"Die Datei \"" + datei + u"\" verweist auf sich selbst, auch über andere Dateien.");
    }
    fLevels.emplace_front(datei, parent);
    fKeys.insert(fOrder.emplace_front(std::move(key)));
  }
  void Leave() {
    fLevels.pop_front();
    fKeys.erase(fOrder.front());
    fOrder.pop_front();
  }

 private:
  std::forward_list<TLevel> fLevels;  // innermost first: they are released in this order, too
  std::forward_list<std::string> fOrder;
  std::unordered_set<std::string> fKeys;
};

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
    if (fFiles.Exists(drawing)) {
      InsertFile(fQuery, {ICON_DRAWING, drawing, document.DisplayName(), document.ReferencedFiles().Count(),
                          kRootDrawingParent});
    }
    server.CloseServer();
  }
  SetScreenCursor(TCursor::Default);
}

void TAssemblyScan::ScanAssembly(const UnicodeString& datei) {
  TLevels levels;
  // The row entered last, once for the whole level. Where the root has a drawing beside it, that is the
  // drawing's: all references of the root then hang under its drawing, as designers are used to.
  const auto enter = [&](const UnicodeString& assembly) {
    levels.Enter(assembly, fQuery.Field(u"AUTOID").AsInteger());
  };
  enter(datei);
  while (!levels.Empty()) {
    TLevel& level = levels.Innermost();
    if (level.Entered < level.Count) {
      const std::int32_t i = ++level.Entered;
      const UnicodeString file = level.Document.ReferencedFiles().Item(i).FullFileName();
      const UnicodeString name = level.Document.ReferencedFiles().Item(i).DisplayName();
      KeepAlive();
      if (IsPart(file)) {
        EnterPart(file, name, i, level.Parent);
      } else {
        EnterAssembly(file, name, i, level.Parent);
        enter(file);
      }
      continue;
    }
    level.Server.CloseServer();
    levels.Leave();
    SetScreenCursor(TCursor::Default);
    OnLevelScanned();
    // The level above is still at work.
    if (!levels.Empty()) SetScreenCursor(TCursor::HourGlass);
  }
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
}

void TAssemblyScan::EnterDrawing(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                                 std::int64_t parent) {
  const UnicodeString drawing = ChangeFileExtension(file, u".idw");
  if (fFiles.Exists(drawing)) InsertFile(fQuery, {ICON_DRAWING, drawing, name, index, parent});
}
