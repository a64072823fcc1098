// The least that a program can do with a document: no window, no settings, no task. What the real program
// takes longer than this one is its own cost.

#include "inventor/ApprenticeServer.h"
#include "platform/Dispatch.h"
#include "platform/EntryPoint.h"
#include "platform/Error.h"
#include "platform/System.h"

/// Opens the document whose name is the rest of the command line behind a bar, as it stands.
int ProgramMain() {
  const UnicodeString commandLine = CommandLine();
  const UnicodeString document = commandLine.substr(commandLine.find(u'|') + 1);
  const TComApartment apartment;
  try {
    const TApprenticeServer server;
    server.OpenDocument(document);
  } catch (const EError&) {
    return 1;
  }
  return 0;
}
