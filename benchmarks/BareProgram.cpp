// The least that a program can do to have a task's calls made: no window, no settings, no table. What the
// real program takes longer than this one is its own cost.

#include "inventor/ApprenticeServer.h"
#include "inventor/DrawingReference.h"
#include "inventor/IndexHint.h"
#include "inventor/PropertyUpdate.h"
#include "platform/Dispatch.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "platform/System.h"

namespace {

/// What stands between two bars of the command line, counted from 1; empty where there are not as many.
UnicodeString Part(const UnicodeString& commandLine, int number) {
  std::size_t begin = 0;
  for (int i = 0; i < number; ++i) {
    begin = commandLine.find(u'|', begin);
    if (begin++ == UnicodeString::npos) return {};
  }
  return commandLine.substr(begin, commandLine.find(u'|', begin) - begin);
}

/// Makes the calls of an export's scan, and looks for a drawing beside each file where that is wanted.
class TBareScan {
 public:
  explicit TBareScan(bool withFiles) : fWithFiles(withFiles) {}

  /// The root is opened on its own first.
  void Run(const UnicodeString& assembly) const {
    OpenRoot(assembly);
    ScanLevel(assembly);
  }

 private:
  void OpenRoot(const UnicodeString& assembly) const {
    const TApprenticeServer server;
    const TDocument document = server.OpenDocument(assembly);
    static_cast<void>(document.DisplayName());
    static_cast<void>(document.DisplayName());
    static_cast<void>(document.ReferencedFiles().Count());
    LookForDrawing(assembly);
    server.CloseServer();
  }

  void ScanLevel(const UnicodeString& assembly) const {
    const TApprenticeServer server;
    const TDocument document = server.OpenDocument(assembly);
    const std::int32_t count = document.ReferencedFiles().Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      const UnicodeString file = document.ReferencedFiles().Item(i).FullFileName();
      static_cast<void>(document.ReferencedFiles().Item(i).DisplayName());
      LookForDrawing(file);
      if (!file.ends_with(u".ipt")) ScanLevel(file);
    }
    server.CloseServer();
  }

  void LookForDrawing(const UnicodeString& file) const {
    if (fWithFiles) static_cast<void>(FileExists(ChangeFileExtension(file, u".idw")));
  }

  bool fWithFiles;
};

}  // namespace

/// Called with |SWITCH|DOCUMENT, for /P followed by |LIST. The switch /E-calls leaves out the files.
int ProgramMain() {
  const UnicodeString commandLine = CommandLine();
  const UnicodeString task = Part(commandLine, 1);
  const UnicodeString document = Part(commandLine, 2);
  const TComApartment apartment;
  try {
    if (task == u"/P") UpdateProperties(document, Part(commandLine, 3), {u"INTZUSTAND-EOF", u"Hinweis"});
    if (task == u"/R") ChangeDrawingReference(document, [] {});
    if (task == u"/RI") RemoveIndexHint(document);
    if (task == u"/E") TBareScan(true).Run(document);
    if (task == u"/E-calls") TBareScan(false).Run(document);
  } catch (const EError&) {
    return 1;
  }
  return 0;
}
