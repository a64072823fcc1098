#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "zip/ArchiveFile.h"
#include "zip/DataEstimate.h"

struct z_stream_s;

/// The Deflate stream of one entry after the other, written into the archive's file. The compressor searches
/// for repeats only where that is likely to pay. Owned by the archive, whose file must outlive it.
class TPackedStream {
 public:
  explicit TPackedStream(TArchiveFile& target);
  TPackedStream(const TPackedStream&) = delete;
  TPackedStream& operator=(const TPackedStream&) = delete;
  ~TPackedStream();

  /// Begins an entry's stream; then come any number of times Room and Pack, and Finish.
  void Begin();
  /// Where the next block is read into. Valid until Pack.
  std::span<char> Room() noexcept;
  /// Packs the first `count` bytes of the room.
  void Pack(std::size_t count);
  void Finish();

 private:
  /// What is done with a unit of the data.
  enum class TKind {
    Stored,   ///< written as it is
    Zeros,    ///< zeros only: written as Deflate data without the compressor
    Huffman,  ///< compressed without a search for repeats
    Search,   ///< compressed
  };
  struct TDeflateEnd {
    void operator()(z_stream_s* stream) const noexcept;
  };
  using TBytes = std::span<const unsigned char>;

  static bool IsCompressed(TKind kind) noexcept { return kind == TKind::Huffman || kind == TKind::Search; }
  TKind KindOf(TBytes unit, const TDataEstimate::TResult& estimate) const;
  void PackRun(TBytes run);
  void Switch(TKind kind);
  void BeginSearch(std::size_t position, bool isText, bool repeatsEarlier);
  void TuneSearch();
  void EndTrial();
  void KeepHistory() noexcept;
  void Store(TBytes run);
  void StoreZeros(std::size_t count);
  void Deflate(TBytes run, int flush);

  TArchiveFile& fTarget;
  std::unique_ptr<z_stream_s, TDeflateEnd> fStream;
  TDataEstimate fEstimate;
  TKind fKind = TKind::Stored;
  bool fIsTextSearch = false;
  // Where nothing says whether a search pays, its first unit is a trial.
  std::vector<unsigned char> fTrial;  // the unit; empty: no trial
  std::size_t fTrialBegin = 0;        // in the stream's output
  bool fSearchFails = false;
  std::vector<unsigned char> fBuffer;  // the window before the block, then the block
  std::size_t fBlock = 0;              // bytes of the block that are packed, but not yet history
  std::size_t fHistory = 0;            // how much of the window is filled; 0 in an entry's first block
};
