#include "export/HtmlListing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "resources/Icons.h"

namespace {

std::string Listing(const std::vector<TListingRow>& rows, TextView warning = {}) {
  THtmlListing listing;
  for (const TListingRow& row : rows) listing.AddRow(row);
  std::string page;
  listing.Write(u"Größe <&\"'\xD800>", warning, [&page](std::string_view piece) {
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
  const TListingRow part{2, ICON_PART, u"2", u"Deckel", u"C:\\d.ipt", TFileFate::NotFound};
  const TListingRow assembly{0, ICON_ASSEMBLY, u"1", u"Pumpe", u"C:\\p.iam"};
  const TListingRow drawing{
      1, ICON_DRAWING, u"3", u"Bl\x85tt \U0001F529", u"C:\\b.idw", TFileFate::NotCopied};
  const struct {
    std::vector<TListingRow> Rows;
    std::vector<std::string> Texts;
  } cases[] = {
      {{},
       {">0 Bauteile\n", ">0 Baugruppen\n", ">0 Zeichnungen\n</ul>",
        "<title>Größe &lt;&amp;&quot;&#39;\uFFFD&gt;</title>", "<h1 id=\"title\">Größe &lt;"}},
      {{assembly, part, drawing},
       {">1 Bauteil\n", ">1 Baugruppe\n", ">1 Zeichnung\n", ">2 Dateien fehlen<",
        "--l:0><td>1<th scope=row><svg role=img aria-label=\"Baugruppe, Ebene 1\"><use href=#assembly />",
        "</svg>Pumpe<td>C:\\p.iam\n<tr style=--l:2><td>2<th scope=row>",
        "aria-label=\"Bauteil, Ebene 3\"><use href=#part /></svg>Deckel<td>C:\\d.ipt<strong>",
        "Datei nicht gefunden!</strong>\n<tr style=--l:1><td>3",
        "aria-label=\"Zeichnung, Ebene 2\"><use href=#drawing /></svg>Bl",
        "</svg>Bl\uFFFDtt \U0001F529<td>C:\\b.idw<strong>", "Datei konnte nicht kopiert werden!</strong>\n",
        "<symbol id=\"part\" viewBox=\"0 0 64 64\"><path ", "<symbol id=\"assembly\"",
        "<symbol id=\"drawing\"", "<symbol id=\"warning\""}},
      {std::vector(1001, part), {">1001 Bauteile\n", ">1001 Dateien fehlen<"}},
  };
  for (const auto& test : cases) {
    const std::string page = Listing(test.Rows);
    EXPECT_EQ(Count(page, "<tr style="), test.Rows.size());
    for (const std::string& text : test.Texts) EXPECT_EQ(Count(page, text), 1) << text;
  }
  EXPECT_EQ(Count(Listing({part}, u"Nicht <alles>"), "</svg>Nicht &lt;alles&gt;</strong></p>\n<ul>"), 1);
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
    for (const TextView file : test.Files) rows.push_back({0, ICON_PART, u"", u"", file});
    const std::string page = Listing(rows);
    std::string marks;
    for (std::size_t at = 0; (at = page.find("<tr style", at)) != std::string::npos; ++at) {
      marks += page.substr(0, page.find('\n', at)).ends_with("in einem anderen Ordner</small>") ? '+' : '-';
    }
    EXPECT_EQ(marks, test.Marks);
  }
}
