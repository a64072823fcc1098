#pragma once

#include <cstdint>

#include "database/Query.h"
#include "platform/Text.h"

// The working table of the export dialog: one row for each file that an assembly uses, in the order in which
// the scan finds them.

/// What `Parent` says where no row is above.
constexpr std::int64_t kRootParent = -1;
/// The parent of the drawing beside the root assembly. No row has this key: the drawing stands beside the
/// root.
constexpr std::int64_t kRootDrawingParent = 0;

struct TFileRow {
  std::int32_t ImgIndex;   ///< ICON_PART, ICON_ASSEMBLY or ICON_DRAWING
  UnicodeString Filename;  ///< full path
  UnicodeString DisplayName;
  std::int32_t IamIndex;  ///< position among the assembly's references, from 1; the root's rows: their number
  std::int64_t Parent;    ///< AutoID of the row above
};

/// Makes the table anew and opens the query on it, empty. The name ends in `userN`, as it is.
void CreateWorkingTable(TQuery& query, TextView userN);

/// Enters a file that is marked for copying; its row becomes the current one.
void InsertFile(TQuery& query, const TFileRow& row);
