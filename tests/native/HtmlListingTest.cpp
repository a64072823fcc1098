#include "export/HtmlListing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "resources/Icons.h"

namespace {

std::string Listing(TextView title, const std::vector<TListingRow>& rows) {
  std::string page;
  const auto walk = [&rows](const TListingVisitor& visit) { std::ranges::for_each(rows, visit); };
  WriteHtmlListing(title, walk, [&page](std::string_view piece) {
    EXPECT_LT(piece.size(), 64 * 1024);
    page += piece;
  });
  return page;
}

std::size_t Count(const std::string& page, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = page.find(text, at)) != std::string::npos; ++at) ++count;
  return count;
}

}  // namespace

TEST(HtmlListingTest, ShowsLevelsKindsAndMissingFiles) {
  const TListingRow part{2, ICON_PART, u"2", u"Deckel", u"C:\\d.ipt", true};
  const TListingRow assembly{0, ICON_ASSEMBLY, u"1", u"Pumpe", u"C:\\p.iam"};
  const TListingRow drawing{1, ICON_DRAWING, u"3", u"Bl\x85tt", u"C:\\b.idw"};
  const struct {
    std::vector<TListingRow> Rows;
    std::vector<std::string> Texts;
  } cases[] = {
      {{}, {">0 Bauteile\n", ">0 Baugruppen\n", ">0 Zeichnungen\n", ">Keine Datei fehlt\n"}},
      {{assembly, part, drawing},
       {">1 Bauteil\n", ">1 Baugruppe\n", ">1 Zeichnung\n", ">1 Datei nicht gefunden<",
        "--l:0><td>1<th scope=row><svg role=img aria-label=\"Baugruppe, Ebene 1\"><use href=#assembly />",
        "</svg>Pumpe<td>C:\\p.iam\n<tr style=--l:2><td>2<th scope=row>",
        "aria-label=\"Bauteil, Ebene 3\"><use href=#part /></svg>Deckel<td>C:\\d.ipt<strong>",
        "Datei nicht gefunden!</strong>\n<tr style=--l:1><td>3",
        "aria-label=\"Zeichnung, Ebene 2\"><use href=#drawing /></svg>Bl\xEF\xBF\xBDtt",
        "<symbol id=\"part\" viewBox=\"0 0 64 64\"><path ", "<symbol id=\"assembly\"",
        "<symbol id=\"drawing\"", "<symbol id=\"warning\""}},
      {std::vector(1001, part), {">1001 Bauteile\n", ">1001 Dateien nicht gefunden<"}},
  };
  for (const auto& test : cases) {
    const std::string page = Listing(u"", test.Rows);
    EXPECT_EQ(Count(page, "<tr style="), test.Rows.size());
    for (const std::string& text : test.Texts) EXPECT_EQ(Count(page, text), 1) << text;
  }
}

TEST(HtmlListingTest, MarksNamesUnderSeveralPaths) {
  const struct {
    std::vector<TextView> Files;
    std::string Marks;
  } cases[] = {
      {{u"C:\\a\\x.ipt", u"C:\\b\\x.ipt", u"C:\\b\\y.ipt", u"C:\\a\\x.ipt"}, "++-+"},
      {{u"C:\\a\\Größe.ipt", u"D:/GRÖSSE1.ipt", u"D:/GRÖßE.IPT"}, "+-+"},
      {{u"C:\\a\\x.ipt", u"c:\\A\\X.IPT", u"C:\\a\\x.ipt"}, "---"},
      {{u"", u"C:\\a\\", u"C:\\b\\"}, "---"},
  };
  for (const auto& test : cases) {
    std::vector<TListingRow> rows;
    for (const TextView file : test.Files) rows.push_back({0, ICON_PART, u"", u"", UnicodeString(file)});
    const std::string page = Listing(u"", rows);
    std::string marks;
    for (std::size_t at = 0; (at = page.find("<tr style", at)) != std::string::npos; ++at) {
      marks += page.substr(0, page.find('\n', at)).ends_with("in einem anderen Ordner</small>") ? '+' : '-';
    }
    EXPECT_EQ(marks, test.Marks);
  }
}
