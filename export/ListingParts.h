#pragma once

#include <string_view>

/// The listing's page: listing.html with its style sheet and images, which CMake put in (Listing.cmake). Its
/// marks @TITLE@ (twice), @SUMMARY@ and @ROWS@ are left for the program.
extern const std::string_view kListingPage;
