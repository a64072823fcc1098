#include "inventor/DrawingReference.h"

#include <exception>

#include "inventor/ApprenticeServer.h"
#include "platform/Path.h"

namespace {

/// Runs steps that must all be attempted and remembers the first error.
class TFirstError {
 public:
  template <class TStep>
  void Try(TStep step) {
    try {
      step();
    } catch (...) {
      if (fError == nullptr) fError = std::current_exception();
    }
  }
  void Rethrow() const {
    if (fError != nullptr) std::rethrow_exception(fError);
  }

 private:
  std::exception_ptr fError;
};

void RepointReferences(const TDocument& drawing, const UnicodeString& fileName) {
  const TReferencedFiles files = drawing.ReferencedFiles();
  const std::int32_t count = files.Count();
  for (std::int32_t done = 0; done < count; ++done) {
    const std::int32_t index = done + 1;
    const UnicodeString referenced = files.Item(index).FullFileName();
    files.Item(index).ReplaceReference(ChangeFileExtension(fileName, FileExtension(referenced)));
  }
}

/// The drawing and the server are closed even if the save fails, each even if closing the other fails. The
/// first error is reported.
void SaveAndClose(const TApprenticeServer& server, const TDocument& drawing, const UnicodeString& fileName) {
  TFirstError error;
  error.Try([&] {
    server.SaveSet().AddDocumentToSave(drawing, fileName);
    server.SaveSet().ExecuteSave();
  });
  error.Try([&] { drawing.CloseDocument(); });
  error.Try([&] { server.CloseServer(); });
  error.Rethrow();
}

}  // namespace

bool ChangeDrawingReference(const UnicodeString& fileName, const std::function<void()>& onMigrationNeeded) {
  const TApprenticeServer server;
  const TDocument drawing = server.OpenDocument(fileName);
  if (drawing.NeedsMigration()) {
    onMigrationNeeded();
    drawing.CloseDocument();
    server.CloseServer();
    return false;
  }
  RepointReferences(drawing, fileName);
  SaveAndClose(server, drawing, fileName);
  return true;
}
