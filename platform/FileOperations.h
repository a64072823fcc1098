#pragma once

#include <functional>

#include "platform/Text.h"

// Whole files and folders: what the export does with those it stages. What another program has open for a
// moment, as a scanner a new file, is waited for, up to two seconds.

/// `path` as the system understands it: absolute, with "\" alone, without "." and "..", dots and blanks at
/// the ends of names, and a separator at its own end; short names made long. For comparing paths, not for
/// opening them.
UnicodeString NormalisedPath(TextView path);

/// True for a link to a file or a folder, also when it leads nowhere.
bool IsLink(TextView path);

/// Copies a file over whatever file has the name `to`, write-protected or a link: a link is replaced, not
/// followed. `onBlock` is called again and again meanwhile and must not throw. False when it fails: a source
/// or target that cannot be opened leaves what is there, and no copy is left half.
bool CopyFileOver(TextView from, TextView to, const std::function<void()>& onBlock);

/// Throws EError of kind InputOutput with the system's code, for a write-protected file too.
void RemoveFile(TextView path);

/// Gives a file another name in the same folder, in place of the file that has it. Throws like RemoveFile.
void RenameFile(TextView from, TextView to);

/// Removes a folder with all that is in it. Links are removed, not followed; what cannot be removed stays.
void RemoveFolder(TextView path) noexcept;
