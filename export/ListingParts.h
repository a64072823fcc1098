#pragma once

#include <string_view>

// Fixed parts of the listing, which CMake reads out of their own files (Listing.cmake).

/// The style sheet, listing.css.
extern const std::string_view kListingStyle;

/// The images as `<symbol>` elements, named like their files in resources/.
extern const std::string_view kListingSymbols;
