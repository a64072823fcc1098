#include "platform/Path.h"

TextView FileExtension(TextView fileName) {
  const std::size_t last = fileName.find_last_of(u".\\:");
  return last != TextView::npos && fileName[last] == u'.' ? fileName.substr(last) : TextView();
}

TextView ParentFolder(TextView path) {
  const std::size_t separator = path.find_last_of(u"\\/");
  return separator != TextView::npos ? path.substr(0, separator) : TextView();
}

TextView FileNameWithoutFolder(TextView fileName) {
  // npos + 1 is the beginning: without a separator it is the whole name.
  return fileName.substr(fileName.find_last_of(u"\\:") + 1);
}

UnicodeString ChangeFileExtension(TextView fileName, TextView extension) {
  fileName.remove_suffix(FileExtension(fileName).size());
  return UnicodeString(fileName).append(extension);
}
