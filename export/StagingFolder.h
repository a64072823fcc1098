#pragma once

#include "database/Query.h"
#include "platform/Text.h"

// The folder in which the files of an archive are gathered. It is removed with all that is in it, so nothing
// of the user's may ever lie there.

/// The folder for the assembly `fileName`, below the folder for short-lived files, with a separator at its
/// end.
UnicodeString StagingFolder(TextView fileName);

/// Throws EError of kind InputOutput, with a text for the user, when `folder` must not be used: it is no
/// child of the folder for short-lived files or a link, or a file of the working table or `archive` lies in
/// it; also when `archive` is such a file itself, as what has its name is removed. Looks only, and leaves the
/// query's cursor where it was.
void CheckStagingFolder(TextView folder, TextView archive, TQuery& files);

/// The file's name in the folder: what stands behind the last separator, "/" too, so that nothing in it leads
/// out of there.
TextView StagedName(TextView file);

/// Copies the file to the folder, over one of its name. One that is missing or cannot be copied is left out:
/// the others must not wait for it.
void StageFile(TextView file, TextView folder);
