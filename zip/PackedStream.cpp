#include "zip/PackedStream.h"

#include <zlib.h>

#include <algorithm>
#include <new>

namespace {

constexpr int kLevel = 6;
constexpr int kMemory = 8;
constexpr int kMaxMatch = 258;
constexpr int kCandidates = 1;
constexpr int kRawDeflate = -MAX_WBITS;
constexpr std::size_t kWindow = 32'768;
constexpr std::size_t kMostStored = 0xFFFF;  // bytes of one stored block
/// As many units as one stored block can hold. Larger blocks leave the cache before they are written.
constexpr std::size_t kBlockSize = kMostStored / TDataEstimate::kUnitSize * TDataEstimate::kUnitSize;

/// What a unit must save at least before it goes through the compressor: a change of the kind costs about as
/// much for its marks and for code tables of their own.
constexpr std::size_t kWorthPacking = 160;

}  // namespace

void TPackedStream::TDeflateEnd::operator()(z_stream_s* stream) const noexcept {
  ::deflateEnd(stream);
  delete stream;
}

TPackedStream::TPackedStream(TArchiveFile& target) : fTarget(target), fBuffer(kWindow + kBlockSize) {
  auto stream = std::make_unique<z_stream>();
  if (::deflateInit2(stream.get(), kLevel, Z_DEFLATED, kRawDeflate, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  fStream.reset(stream.release());
}

TPackedStream::~TPackedStream() = default;

void TPackedStream::Begin() {
  ::deflateReset(fStream.get());
  // Few candidates for each match, but always a look whether the next position has a longer one: of all
  // settings that take this time, these give the smallest archives.
  ::deflateTune(fStream.get(), kMaxMatch, kMaxMatch, kMaxMatch, kCandidates);
  fEstimate.Reset();
  fKind = TKind::Stored;
  fHistory = 0;
}

std::span<char> TPackedStream::Room() noexcept {
  return std::span(reinterpret_cast<char*>(fBuffer.data()), fBuffer.size()).subspan(kWindow);
}

void TPackedStream::Pack(std::size_t count) {
  const TBytes block = TBytes(fBuffer).subspan(kWindow, count);
  std::size_t begin = 0;
  for (std::size_t i = 0; i < count; i += TDataEstimate::kUnitSize) {
    const TBytes unit = block.subspan(i, std::min(TDataEstimate::kUnitSize, count - i));
    const TDataEstimate::TResult estimate = fEstimate.Judge(unit);
    const TKind kind = estimate.Savings < kWorthPacking ? TKind::Stored : TKind::Packed;
    if (kind == fKind) continue;
    std::size_t end = i;
    if (kind == TKind::Packed && !estimate.HasRepeats) end += TDataEstimate::RandomStart(unit);
    PackRun(block.subspan(begin, end - begin));
    begin = end;
    if (kind == TKind::Packed) {
      BeginPacked(end, estimate);
    } else {
      BeginStored();
    }
  }
  PackRun(block.subspan(begin));
  KeepHistory(count);
}

void TPackedStream::PackRun(TBytes run) {
  if (run.empty()) return;
  if (fKind == TKind::Packed) {
    Deflate(run, Z_NO_FLUSH);
  } else {
    Store(run);
  }
}

void TPackedStream::BeginStored() {
  // Full: the compressor will not see the stored bytes, and must not measure distances across them.
  Deflate({}, Z_FULL_FLUSH);
  fKind = TKind::Stored;
}

void TPackedStream::BeginPacked(std::size_t position, const TDataEstimate::TResult& estimate) {
  fKind = TKind::Packed;
  // In texts of numbers the short matches that the filtered strategy refuses cost more than they save.
  ::deflateParams(fStream.get(), kLevel, estimate.IsText ? Z_FILTERED : Z_DEFAULT_STRATEGY);
  if (!estimate.HasRepeats) return;
  // What it has not seen of the bytes before.
  const std::size_t size = std::min(fHistory + position, kWindow);
  ::deflateSetDictionary(fStream.get(), &fBuffer[kWindow + position - size], static_cast<uInt>(size));
}

void TPackedStream::KeepHistory(std::size_t count) {
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
