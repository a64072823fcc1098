#include "simulator/ServerObjects.h"

#include <algorithm>

#include "simulator/DocumentObjects.h"

using simulator::Failure;
using simulator::Handle;

namespace {

constexpr TParameter kFileName[] = {TParameter::Text};
constexpr TParameter kDocumentAndFileName[] = {TParameter::Unknown, TParameter::Text};

constexpr TMember kServerMembers[] = {
    {0x03002502, TInvokeKind::Method, "OpenDocument", kFileName, Handle<&TServerObject::OpenDocument>},
    {0x03002504, TInvokeKind::Method, "CloseServer", {}, Handle<&TServerObject::CloseServer>},
    {0x03002506, TInvokeKind::Get, "SaveSet", {}, Handle<&TServerObject::SaveSet>},
};

constexpr TMember kSaveSetMembers[] = {
    {0x0300150A, TInvokeKind::Method, "ExecuteSave", {}, Handle<&TSaveSetObject::ExecuteSave>},
    {0x03001E07, TInvokeKind::Method, "AddDocumentToSave", kDocumentAndFileName,
     Handle<&TSaveSetObject::AddDocumentToSave>},
};

}  // namespace

void TServerState::CheckOpen() const {
  if (Closed) throw Failure(u"Der Server ist geschlossen.");
}

TServerObject::TServerObject(TSimulator& simulator) : TSimulatedObject(simulator, "server") {}

std::span<const TMember> TServerObject::Members() const {
  return kServerMembers;
}

TVariant TServerObject::OpenDocument(std::span<const TVariant> arguments) {
  Simulator().DelayOpening();
  const auto document = std::make_shared<TOpenDocument>(Simulator(), arguments[0].AsText());
  fState->Documents.push_back(document);
  return TVariant::Object(MakeDispatch(std::make_shared<TDocumentObject>(Simulator(), document)));
}

TVariant TServerObject::CloseServer(std::span<const TVariant>) {
  for (const auto& document : fState->Documents) document->Close();
  fState->PendingSaves.clear();
  fState->Closed = true;
  return {};
}

TVariant TServerObject::SaveSet(std::span<const TVariant>) {
  return TVariant::Object(MakeDispatch(std::make_shared<TSaveSetObject>(Simulator(), fState)));
}

TSaveSetObject::TSaveSetObject(TSimulator& simulator, std::shared_ptr<TServerState> state)
    : TSimulatedObject(simulator, "saveset"), fState(std::move(state)) {}

std::span<const TMember> TSaveSetObject::Members() const {
  return kSaveSetMembers;
}

TVariant TSaveSetObject::ExecuteSave(std::span<const TVariant>) {
  // All are checked before the first is written.
  for (const auto& pending : fState->PendingSaves) {
    pending.Document->CheckOpen();
    pending.Document->CheckMigrated();
  }
  for (const auto& pending : fState->PendingSaves) pending.Document->SaveAs(pending.FileName);
  fState->PendingSaves.clear();
  return {};
}

TVariant TSaveSetObject::AddDocumentToSave(std::span<const TVariant> arguments) {
  const auto target = TargetOf(arguments[0].AsObject());
  const auto object = std::dynamic_pointer_cast<TDocumentObject>(target);
  const auto document = object != nullptr ? object->Document() : nullptr;
  if (std::ranges::find(fState->Documents, document) == fState->Documents.end()) {
    throw Failure(u"Das Objekt ist kein Dokument dieses Servers.");
  }
  document->CheckOpen();
  fState->PendingSaves.push_back({document, arguments[1].AsText()});
  return {};
}
