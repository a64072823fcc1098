#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "simulator/OpenDocument.h"
#include "simulator/SimulatedObject.h"

/// What a server and its save set share; the documents outlive it where a client still holds them.
struct TServerState {
  struct TPendingSave {
    std::shared_ptr<TOpenDocument> Document;
    UnicodeString FileName;
  };

  std::vector<std::shared_ptr<TOpenDocument>> Documents;
  std::vector<TPendingSave> PendingSaves;
  bool Closed = false;

  void CheckOpen() const;
};

class TServerObject final : public TSimulatedObject {
 public:
  explicit TServerObject(TSimulator& simulator);
  ~TServerObject() override { TraceRelease(); }

  TVariant OpenDocument(std::span<const TVariant> arguments);
  TVariant CloseServer(std::span<const TVariant> arguments);
  TVariant SaveSet(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
  void CheckUsable() const override { fState->CheckOpen(); }

  std::shared_ptr<TServerState> fState = std::make_shared<TServerState>();
};

/// The server's documents that wait to be saved: every reference to it sees the same ones.
class TSaveSetObject final : public TSimulatedObject {
 public:
  TSaveSetObject(TSimulator& simulator, std::shared_ptr<TServerState> state);

  TVariant ExecuteSave(std::span<const TVariant> arguments);
  TVariant AddDocumentToSave(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
  void CheckUsable() const override { fState->CheckOpen(); }

  std::shared_ptr<TServerState> fState;
};
