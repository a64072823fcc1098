#pragma once

#include <functional>
#include <string_view>

#include "platform/Text.h"

/// One row of the exported tree as the listing shows it.
struct TListingRow {
  int Level = 0;  // 0 is the top
  int Image = 0;  // ICON_PART, ICON_ASSEMBLY or ICON_DRAWING
  UnicodeString Key;
  UnicodeString Name;
  UnicodeString File;
  bool Missing = false;
};

using TListingVisitor = std::function<void(const TListingRow&)>;
/// Shows the visitor each row in the tree's order; must show the same rows when it is called again.
using TListingRows = std::function<void(const TListingVisitor&)>;
using TListingWriter = std::function<void(std::string_view)>;

/// Writes the listing, a page of HTML in UTF-8 that needs no other file: `write` gets it piece by piece, some
/// tens of KiB each. Walks the rows twice and keeps none of them, but one path for each distinct file name.
void WriteHtmlListing(TextView title, const TListingRows& rows, const TListingWriter& write);
