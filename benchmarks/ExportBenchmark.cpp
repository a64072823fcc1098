#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "benchmarks/FreshMachine.h"
#include "benchmarks/GeneratedAssembly.h"
#include "export/ExportAsmDlg.h"
#include "export/HtmlListing.h"
#include "headless/DialogScreen.h"
#include "headless/TreeListScreen.h"
#include "inventor/ApprenticeServer.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "simulator/Simulator.h"
#include "zip/ZipArchive.h"

// The export dialog of the whole program, in one process with the simulated component, and the parts of an
// export, each at several numbers of rows.

namespace {

using TTree = headless::TTreeListScreen;

constexpr std::size_t kCopyHeader = 3;

/// Runs the program with /E; `user` acts while the dialog is open, and the program ends when he has.
void WithDialog(const benchmark::State& state, const std::function<void(TfrmExportAsm& form)>& user) {
  const TFreshMachine fresh;
  TSimulator simulator({LoadGenerated, {}}, {});
  bool done = false;
  headless::TMachine& machine = headless::Machine();
  machine.CreateInstance = [&simulator](const TGuid&, const TGuid&) { return simulator.CreateServer(); };
  machine.CommandLine = u"VelmoraInventor.exe /E " + GeneratedAssembly(state.range(0));
  machine.UserActions = {[&] {
                           user(*frmExportAsm);
                           done = true;
                         },
                         [] { headless::TDialogScreen::PressEscape(); }};
  ProgramMain();
  Check(done);
}

void Draw(std::size_t leastLines) {
  const auto lines = TTree::Lines();
  Check(lines.size() >= leastLines);
}

std::size_t RowCount(const TfrmExportAsm& form) {
  return form.nxQuery1.RowCount();
}

void Scan(benchmark::State& state) {
  WithDialog(state, [&state](TfrmExportAsm& form) {
    form.ASMTreeList.BeginUpdate();
    for (auto _ : state) form.FirstOpenAssembly(GeneratedAssembly(state.range(0)));
    form.ASMTreeList.EndUpdate();
    Check(std::abs(static_cast<std::int64_t>(RowCount(form)) - state.range(0)) <= state.range(0) / 1'000);
  });
}

void CallComponent(const UnicodeString& file) {
  const TApprenticeServer server;
  const TDocument document = server.OpenDocument(file);
  const std::int32_t count = document.ReferencedFiles().Count();
  for (std::int32_t i = 1; i <= count; ++i) {
    const UnicodeString name = document.ReferencedFiles().Item(i).FullFileName();
    benchmark::DoNotOptimize(document.ReferencedFiles().Item(i).DisplayName());
    if (name.ends_with(u".iam")) CallComponent(name);
  }
  server.CloseServer();
}

/// The component's share of the scan.
void ScanCallsAlone(benchmark::State& state) {
  WithDialog(state, [&state](TfrmExportAsm&) {
    for (auto _ : state) CallComponent(GeneratedAssembly(state.range(0)));
  });
}

/// From the end of the scan to the drawn rows.
void FirstRows(benchmark::State& state) {
  const std::size_t before = HeapInUse();
  WithDialog(state, [&state, before](TfrmExportAsm& form) {
    state.counters["bytes/row"] =
        static_cast<double>(HeapInUse() - before) / static_cast<double>(RowCount(form));
    for (auto _ : state) {
      state.PauseTiming();
      form.ASMTreeList.BeginUpdate();
      form.FirstOpenAssembly(GeneratedAssembly(state.range(0)));
      state.ResumeTiming();
      form.ASMTreeList.EndUpdate();
      Draw(4);
    }
  });
}

void PressButton(benchmark::State& state, TextView prepared, TextView measured) {
  WithDialog(state, [&](TfrmExportAsm&) {
    for (auto _ : state) {
      state.PauseTiming();
      headless::TDialogScreen::Press(prepared);
      Draw(1);
      state.ResumeTiming();
      headless::TDialogScreen::Press(measured);
      Draw(1);
    }
  });
}

void ExpandAll(benchmark::State& state) {
  PressButton(state, u"Alle Knoten schließen", u"Alle Knoten öffnen");
}

void CollapseAll(benchmark::State& state) {
  PressButton(state, u"Alle Knoten öffnen", u"Alle Knoten schließen");
}

/// Each page shows rows that were never drawn before.
void PageDown(benchmark::State& state) {
  WithDialog(state, [&state](TfrmExportAsm&) {
    headless::TDialogScreen::Press(u"Alle Knoten öffnen");
    for (auto _ : state) {
      TTree::Press(TTreeKey::PageDown);
      Draw(20);
    }
  });
}

/// The table is changed and read anew, the tree bound and opened.
void CopyHeaderClick(benchmark::State& state) {
  WithDialog(state, [&state](TfrmExportAsm& form) {
    form.ASMTreeListcxDBTreeListColumn4.SetVisible(true);
    for (auto _ : state) {
      TTree::ClickHeader(kCopyHeader);
      Draw(20);
    }
  });
}

constexpr TextView kPage = u"C:\\Temp\\Export.html";

void WriteListing(const TfrmExportAsm& form) {
  THtmlListing listing;
  form.ASMTreeList.ForEachRow([&listing](const TTreeListRow& row) {
    listing.AddRow({row.Level, row.Image, row.Texts[0], row.Texts[1], row.Texts[2], TFileFate::NotFound});
  });
  TOutputFile page(kPage, TCreate::Replace);
  listing.Write(u"Baugruppe", {}, [&page](std::string_view piece) { page.Write(piece); });
  page.Close();
}

void Listing(benchmark::State& state) {
  WithDialog(state, [&state](const TfrmExportAsm& form) {
    for (auto _ : state) WriteListing(form);
  });
}

/// What the listing is measured against: the same bytes from memory, row by row through the runtime's buffer.
void ListingBytesAlone(benchmark::State& state) {
  WithDialog(state, [&state](const TfrmExportAsm& form) {
    WriteListing(form);
    std::vector<std::string> rows;
    std::ifstream page(headless::HostPath(kPage), std::ios::binary);
    for (std::string row; std::getline(page, row);) rows.push_back(row);
    for (auto _ : state) {
      std::ofstream copy(headless::HostPath(u"C:\\Temp\\Kopie.html"), std::ios::binary);
      for (const std::string& row : rows) copy << row << '\n';
    }
  });
}

/// All that a click on the button does, but the waiting after each row; the rows' files do not exist.
void ExportClick(benchmark::State& state) {
  WithDialog(state, [&state](TfrmExportAsm&) {
    headless::Machine().SaveAnswers = {u"C:\\AppData\\Archiv"};
    for (auto _ : state) headless::TDialogScreen::Press(u"Exportieren");
    Check(FileExists(u"C:\\AppData\\Archiv.zip"));
  });
}

/// As many files of 2 KB in one folder.
void Packing(benchmark::State& state) {
  const TFreshMachine fresh;
  const std::filesystem::path folder = headless::HostPath(u"C:\\Temp\\Ordner");
  std::filesystem::create_directory(folder);
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    std::ofstream file(folder / ("Teil " + std::to_string(i) + ".ipt"), std::ios::binary);
    for (int line = 0; line < 100; ++line) file << i * line << " Rillenkugellager\n";
  }
  for (auto _ : state) {
    TZipArchive archive(u"C:\\Temp\\Archiv.zip");
    archive.AddContents(u"C:\\Temp\\Ordner");
    archive.Close();
  }
}

void Sizes(benchmark::internal::Benchmark* measured) {
  measured->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}
BENCHMARK(Scan)->Apply(Sizes)->Iterations(1);
BENCHMARK(ScanCallsAlone)->Apply(Sizes)->Iterations(1);
BENCHMARK(FirstRows)->Apply(Sizes)->Iterations(1);
BENCHMARK(ExpandAll)->Apply(Sizes)->Iterations(10);
BENCHMARK(CollapseAll)->Apply(Sizes)->Iterations(10);
BENCHMARK(PageDown)->Apply(Sizes)->Iterations(30);
BENCHMARK(CopyHeaderClick)->Apply(Sizes)->Iterations(2);
BENCHMARK(Listing)->Apply(Sizes)->Iterations(5);
BENCHMARK(ListingBytesAlone)->Apply(Sizes)->Iterations(5);
BENCHMARK(ExportClick)->Apply(Sizes)->Iterations(1);
BENCHMARK(Packing)->Apply(Sizes)->Iterations(1);

}  // namespace
