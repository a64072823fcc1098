#include "zip/PackedStream.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

using namespace std::string_view_literals;

namespace {

constexpr int kMemory = 8;
constexpr int kRawDeflate = -MAX_WBITS;
constexpr std::size_t kWindow = 32'768;
constexpr std::size_t kMostStored = 0xFFFF;  // bytes of one stored block
/// As many units as one stored block can hold. Larger blocks leave the cache before they are written.
constexpr std::size_t kBlockSize = kMostStored / TDataEstimate::kUnitSize * TDataEstimate::kUnitSize;

/// What a unit must save at least to be compressed, and a shorter one in proportion: a change of the kind
/// costs about as much for its marks and for code tables of their own.
constexpr std::size_t kWorthPacking = 288;
/// Fewer bytes are not worth leaving a search for, whatever they are.
constexpr std::size_t kWorthLeaving = 512;

/// How zlib searches: its level stands for the method, the other numbers replace the level's own.
struct TSearch {
  int Level;
  int Strategy;
  int GoodLength, MostLazy, NiceLength, Candidates;
};

constexpr int kMaxMatch = 258;
/// In texts the short matches that the filtered strategy refuses cost more than they save. Few candidates for
/// each match, but always a look whether the next position has a longer one: of all settings that take this
/// time, these give the smallest archives.
constexpr TSearch kTextSearch{6, Z_FILTERED, kMaxMatch, kMaxMatch, kMaxMatch, 2};
/// Small files are worth more candidates; at a file's start there are not many yet. Only where the match is
/// of the least length that the strategy takes, there is a look for a longer one.
constexpr TSearch kFirstTextSearch{6, Z_FILTERED, 4, 7, 32, 24};
/// The fast method, with more candidates than it has by itself.
constexpr TSearch kBinarySearch{3, Z_DEFAULT_STRATEGY, 8, 16, 32, 8};

/// A piece of Deflate data with the format's fixed codes, the first bit lowest.
struct TFixedCode {
  std::size_t Zeros;
  std::uint32_t Bits;
  int Size;
};
constexpr TFixedCode kZero{1, 0x0C, 8};
/// A zero, or the longest and some shorter repeats of the byte before.
constexpr TFixedCode kZeros[] = {{258, 0xA3, 13}, {35, 0x44, 15}, {3, 0x40, 12}, kZero};

}  // namespace

void TPackedStream::TDeflateEnd::operator()(z_stream_s* stream) const noexcept {
  ::deflateEnd(stream);
  delete stream;
}

TPackedStream::TPackedStream(TArchiveFile& target) : fTarget(target), fBuffer(kWindow + kBlockSize) {
  fTrial.reserve(TDataEstimate::kUnitSize);
  auto stream = std::make_unique<z_stream>();
  if (::deflateInit2(stream.get(), kTextSearch.Level, Z_DEFLATED, kRawDeflate, kMemory, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    throw std::bad_alloc();
  }
  fStream.reset(stream.release());
}

TPackedStream::~TPackedStream() = default;

void TPackedStream::Begin() {
  ::deflateReset(fStream.get());
  fEstimate.Reset();
  fKind = TKind::Stored;
  fTrial.clear();
  fHistory = 0;
  fBlock = 0;
}

std::span<char> TPackedStream::Room() noexcept {
  KeepHistory();  // not before: an entry's last block is no history
  return std::span(reinterpret_cast<char*>(fBuffer.data()), fBuffer.size()).subspan(kWindow);
}

void TPackedStream::Pack(std::size_t count) {
  const TBytes block = TBytes(fBuffer).subspan(kWindow, count);
  fSearchFails = false;  // a new block, a new trial
  if (fKind == TKind::Search) TuneSearch();
  std::size_t begin = 0;
  bool hasRepeats = false;
  TBytes unit;
  for (std::size_t i = 0; i < count; i += unit.size()) {
    unit = TDataEstimate::NextUnit(block.subspan(i));
    const TDataEstimate::TResult estimate = fEstimate.Judge(unit);
    TKind kind = KindOf(unit, estimate);
    if (!fTrial.empty() && kind == TKind::Search && !estimate.HasRepeats && !estimate.IsZeros) {
      // Only such a unit needs to know what came of it: to find out costs a block with code tables.
      PackRun(block.subspan(begin, i - begin));
      begin = i;
      EndTrial();
      kind = KindOf(unit, estimate);
    }
    fTrial.clear();
    const bool followsRepeats = std::exchange(hasRepeats, estimate.HasRepeats);
    if (kind == fKind) continue;
    // On either side of stored data only what is worth it is compressed.
    std::size_t end = i;
    if (fKind == TKind::Stored && IsCompressed(kind) && !hasRepeats) {
      end += TDataEstimate::IncompressiblePrefix(unit);
    } else if (IsCompressed(fKind) && kind == TKind::Stored && !followsRepeats) {
      const TBytes run = block.subspan(begin, i - begin);
      end -= TDataEstimate::IncompressibleSuffix(run.last(std::min(run.size(), TDataEstimate::kUnitSize)));
    }
    PackRun(block.subspan(begin, end - begin));
    begin = end;
    Switch(kind);
    if (kind != TKind::Search) continue;
    BeginSearch(end, TDataEstimate::IsText(block.subspan(end)), estimate.RepeatsEarlier);
    if (!hasRepeats) fTrial.assign(unit.begin() + static_cast<std::ptrdiff_t>(end - i), unit.end());
  }
  PackRun(block.subspan(begin));
  fBlock = count;
}

TPackedStream::TKind TPackedStream::KindOf(TBytes unit, const TDataEstimate::TResult& estimate) const {
  constexpr std::size_t kUnitSize = TDataEstimate::kUnitSize;
  const bool isSearch = fKind == TKind::Search;
  if (estimate.IsZeros) return isSearch && unit.size() < kUnitSize ? TKind::Search : TKind::Zeros;
  if (isSearch && unit.size() < kWorthLeaving) return TKind::Search;
  if (estimate.Savings * kUnitSize < kWorthPacking * unit.size()) return TKind::Stored;
  return fSearchFails && !estimate.HasRepeats ? TKind::Huffman : TKind::Search;
}

void TPackedStream::PackRun(TBytes run) {
  if (run.empty()) return;
  switch (fKind) {
    case TKind::Stored:
      return Store(run);
    case TKind::Zeros:
      return StoreZeros(run.size());
    case TKind::Huffman:
    case TKind::Search:
      return Deflate(run, Z_NO_FLUSH);
  }
}

void TPackedStream::Switch(TKind kind) {
  // Full: the compressor will not see what is stored, and must not measure distances across it; and before a
  // new search it forgets what the dictionary is about to give it once more.
  if (IsCompressed(fKind)) Deflate({}, kind == TKind::Huffman ? Z_BLOCK : Z_FULL_FLUSH);
  if (kind == TKind::Huffman) ::deflateParams(fStream.get(), kTextSearch.Level, Z_HUFFMAN_ONLY);
  fKind = kind;
}

void TPackedStream::BeginSearch(std::size_t position, bool isText, bool repeatsEarlier) {
  fIsTextSearch = isText;
  const TSearch& search = fIsTextSearch ? kTextSearch : kBinarySearch;
  ::deflateParams(fStream.get(), search.Level, search.Strategy);
  TuneSearch();
  fTrialBegin = fStream->total_out;
  if (!repeatsEarlier) return;
  // What it has not seen of the bytes before.
  const std::size_t size = std::min(fHistory + position, kWindow);
  ::deflateSetDictionary(fStream.get(), &fBuffer[kWindow + position - size], static_cast<uInt>(size));
}

void TPackedStream::TuneSearch() {
  const bool isFirstBlock = fHistory == 0;
  const TSearch& text = isFirstBlock ? kFirstTextSearch : kTextSearch;
  const TSearch& search = fIsTextSearch ? text : kBinarySearch;
  ::deflateTune(fStream.get(), search.GoodLength, search.MostLazy, search.NiceLength, search.Candidates);
}

/// Compares what the search made of its first unit with what Huffman codes alone would have.
void TPackedStream::EndTrial() {
  Deflate({}, Z_BLOCK);
  const std::size_t size = fStream->total_out - fTrialBegin;
  fSearchFails = size * 100 > TDataEstimate::HuffmanSize(fTrial) * 97;
}

void TPackedStream::KeepHistory() noexcept {
  const std::size_t count = std::exchange(fBlock, 0);
  if (count == 0) return;
  fHistory = std::min(fHistory + count, kWindow);
  const auto end = fBuffer.begin() + static_cast<std::ptrdiff_t>(kWindow + count);
  std::copy(end - static_cast<std::ptrdiff_t>(fHistory), end,
            fBuffer.begin() + static_cast<std::ptrdiff_t>(kWindow - fHistory));
}

void TPackedStream::Store(TBytes run) {
  while (!run.empty()) {
    const std::size_t size = std::min(run.size(), kMostStored);
    const auto low = static_cast<char>(size & 0xFF);
    const auto high = static_cast<char>(size >> 8);
    const char header[] = {0, low, high, static_cast<char>(~low), static_cast<char>(~high)};
    fTarget.Write({header, sizeof header});
    fTarget.Write({reinterpret_cast<const char*>(run.data()), size});
    run = run.subspan(size);
  }
}

void TPackedStream::StoreZeros(std::size_t count) {
  std::uint32_t bits = 0b010;  // a block with the fixed codes, not the last one
  int size = 3;
  const auto put = [&](const TFixedCode& code) {
    bits |= code.Bits << size;
    for (size += code.Size; size >= 8; size -= 8, bits >>= 8) {
      const char byte = static_cast<char>(bits & 0xFF);
      fTarget.Write({&byte, 1});
    }
  };
  put(kZero);
  --count;
  for (const TFixedCode& code : kZeros) {
    for (; count >= code.Zeros; count -= code.Zeros) put(code);
  }
  // The block's end; then an empty stored block, which begins with three bits and fills the byte.
  put({0, 0, 7 + 3 + 7});
  fTarget.Write("\0\0\xff\xff"sv);
}

void TPackedStream::Deflate(TBytes run, int flush) {
  fStream->next_in = const_cast<unsigned char*>(run.data());
  fStream->avail_in = static_cast<uInt>(run.size());
  do {
    const std::span<char> room = fTarget.Room();
    fStream->next_out = reinterpret_cast<unsigned char*>(room.data());
    fStream->avail_out = static_cast<uInt>(room.size());
    ::deflate(fStream.get(), flush);
    fTarget.Advance(room.size() - fStream->avail_out);
  } while (fStream->avail_out == 0);
}

void TPackedStream::Finish() {
  Deflate({}, Z_FINISH);
}
