#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/DocumentFile.h"
#include "tests/support/ProgramTest.h"

namespace {

constexpr TextView kDrawing = u"D:\\Projekt\\Teil 4711.idw";
constexpr TextView kRun = u"/R \"D:\\Projekt\\Teil 4711.idw\"";

std::string DrawingWith(const std::string& references) {
  return DocumentWith("", "\"references\": [" + references + "],");
}

class DrawingReferenceTest : public TProgramTest {};

}  // namespace

TEST_F(DrawingReferenceTest, PointsEveryReferenceBesideTheDrawing) {
  WriteFile(kDrawing,
            DrawingWith(R"("X:\\Alt\\Irgendwas.ipt", "Baugruppe.iam", "X:\\V1.2\\Rohling", "a.b.ipt")"));
  const auto log = Run(kRun);
  std::vector<std::string> files;
  const TDocumentFile document = simulator::ParseDocument(ReadFile(kDrawing));
  for (const TReferenceData& reference : document.References) files.push_back(Utf8FromText(reference.File));
  EXPECT_EQ(files, (std::vector<std::string>{"D:\\Projekt\\Teil 4711.ipt", "D:\\Projekt\\Teil 4711.iam",
                                             "D:\\Projekt\\Teil 4711", "D:\\Projekt\\Teil 4711.ipt"}));
  EXPECT_EQ(log.at(3), "0 text \"IDW Referenz geändert.\"") << "painted by the message loop";
  EXPECT_EQ(log.at(4), "1500 quit");
  WriteFile(kDrawing, DrawingWith(""));
  EXPECT_EQ(Run(kRun).at(4), "1500 quit") << "it is saved even without references";
  EXPECT_EQ(Calls().at(3) + Calls().at(4), "referencedfiles.Count = 0server.SaveSet");
}
