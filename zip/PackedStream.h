#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "zip/ArchiveFile.h"
#include "zip/DataEstimate.h"

struct z_stream_s;

/// The Deflate stream of one entry after the other, written into the archive's file. What looks as if it
/// could not shrink goes past the compressor as stored blocks. Owned by the archive, whose file must outlive
/// it.
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
  enum class TKind { Packed, Stored };
  struct TDeflateEnd {
    void operator()(z_stream_s* stream) const noexcept;
  };
  using TBytes = std::span<const unsigned char>;

  void PackRun(TBytes run);
  void BeginStored();
  void BeginPacked(std::size_t position, const TDataEstimate::TResult& estimate);
  void KeepHistory(std::size_t count);
  void Store(TBytes run);
  void Deflate(TBytes run, int flush);

  TArchiveFile& fTarget;
  std::unique_ptr<z_stream_s, TDeflateEnd> fStream;
  TDataEstimate fEstimate;
  TKind fKind = TKind::Stored;
  std::vector<unsigned char> fBuffer;  // the window before the block, then the block
  std::size_t fHistory = 0;            // how much of the window is filled, up to the block
};
