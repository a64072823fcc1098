#pragma once

#include <random>
#include <string>
#include <string_view>

#include "platform/Text.h"

// Data that packing decides about, and what comes of them. No test framework: fuzz targets use it, too.

/// One part of a recipe. Kinds: r random, t text, n numbers below 16, c columns (16 random bytes,
/// 16 zeros), b the bytes that are `Number` before the end once more, any other the byte `Number`.
struct TDataPart {
  char Kind;
  std::size_t Size;
  std::size_t Number = 0;
};

void AppendPart(std::string& data, const TDataPart& part, std::mt19937& random);

/// The packed stream of `data`, handed over in blocks of this size through the file `path`, in which another
/// stream comes before it.
std::string Packed(TextView path, std::string_view data, std::size_t block);

/// The data of a whole Deflate stream with nothing after it; `size` is how many there should be. Throws
/// std::runtime_error for anything else.
std::string Unpacked(std::string packed, std::size_t size);
