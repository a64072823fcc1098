#include "export/HtmlListing.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "export/ListingParts.h"
#include "export/StagingFolder.h"
#include "resources/Icons.h"

namespace {

constexpr std::size_t kPieceSize = 32768;
/// Rows in a block, which the browser lays out as a whole; the style sheet guesses its height.
constexpr std::size_t kRowsInBlock = 100;

struct TKind {
  int Image;
  std::string_view Symbol;
  std::string_view Name;
  std::string_view Plural;
};
constexpr std::array kKinds = {
    TKind{ICON_PART, "part", "Bauteil", "Bauteile"},
    TKind{ICON_ASSEMBLY, "assembly", "Baugruppe", "Baugruppen"},
    TKind{ICON_DRAWING, "drawing", "Zeichnung", "Zeichnungen"},
};

/// Its place among the kinds; a part's for an image that is none of them.
std::size_t KindOf(int image) {
  const auto found = std::ranges::find(kKinds, image, &TKind::Image);
  return found != kKinds.end() ? static_cast<std::size_t>(found - kKinds.begin()) : 0;
}

/// Controls and non-characters, which may not stand in a page, become U+FFFD.
UnicodeString Permitted(TextView text) {
  UnicodeString result(text);
  char16_t before = u'\0';
  for (char16_t& c : result) {
    const char16_t unit = c;
    const bool control =
        (c < 0x20 && c != u'\t' && c != u'\n' && c != u'\f' && c != u'\r') || (c >= 0x7F && c < 0xA0);
    // The last two characters of each plane, and a block of their own.
    const bool none = c >= 0xFFFE || (c >= 0xFDD0 && c <= 0xFDEF) ||
                      ((c & 0xFFFE) == 0xDFFE && (before & 0xFC3F) == 0xD83F);
    if (control || none) c = 0xFFFD;
    before = unit;
  }
  return result;
}

/// Tells which names in the archive stand under more than one path. Names and paths are compared as SameText
/// does it.
class TFileNames {
 public:
  void Add(TextView path) {
    const TextView name = StagedName(path);
    if (name.empty()) return;
    const auto [known, isNew] = fFirstPaths.try_emplace(SameTextKey(name), path);
    if (!isNew && !SameText(known->second, path)) fDoubles.insert(known->first);
  }
  bool HasSeveralPaths(TextView path) const {
    return !fDoubles.empty() && fDoubles.contains(SameTextKey(StagedName(path)));
  }

 private:
  std::unordered_map<std::string, UnicodeString> fFirstPaths;
  std::unordered_set<std::string> fDoubles;
};

/// What the first walk over the rows finds out.
struct TOverview {
  std::array<std::int64_t, kKinds.size()> Counts{};
  std::int64_t Missing = 0;
  TFileNames Names;

  void Add(const TListingRow& row) {
    ++Counts[KindOf(row.Image)];
    if (row.Missing) ++Missing;
    Names.Add(row.File);
  }
};

/// Gathers the page and hands it on in pieces.
class TPage {
 public:
  explicit TPage(const TListingWriter& write) : fWrite(write) { fPiece.reserve(kPieceSize + kPieceSize / 8); }

  TPage& operator<<(std::string_view markup) {
    fPiece += markup;
    if (fPiece.size() >= kPieceSize) Flush();
    return *this;
  }
  TPage& operator<<(std::int64_t number) { return *this << std::to_string(number); }
  TPage& operator<<(TextView text) {
    for (const char c : Utf8FromText(Permitted(text))) AppendEscaped(c);
    return *this << std::string_view();
  }
  void Flush() {
    if (!fPiece.empty()) fWrite(fPiece);
    fPiece.clear();
  }

 private:
  void AppendEscaped(char c) {
    switch (c) {
      case '&':
        fPiece += "&amp;";
        break;
      case '<':
        fPiece += "&lt;";
        break;
      case '>':
        fPiece += "&gt;";
        break;
      case '"':
        fPiece += "&quot;";
        break;
      case '\'':
        fPiece += "&#39;";
        break;
      default:
        fPiece += c;
    }
  }

  const TListingWriter& fWrite;
  std::string fPiece;
};

/// Writes the page from one of its marks to the next; the marks stand for what this file fills in.
class TTemplate {
 public:
  explicit TTemplate(TPage& page) : fPage(page) {}
  void WriteUntil(std::string_view mark) {
    const std::size_t end = fRest.find(mark);
    fPage << fRest.substr(0, end);
    fRest.remove_prefix(end + mark.size());
  }
  void WriteRest() { fPage << fRest; }

 private:
  TPage& fPage;
  std::string_view fRest = kListingPage;
};

/// The counts; the images beside them double as a legend.
void WriteSummary(TPage& page, const TOverview& overview) {
  page << "<ul>\n";
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    const std::int64_t count = overview.Counts[i];
    page << "<li><svg aria-hidden=\"true\"><use href=\"#" << kKinds[i].Symbol << "\"/></svg>" << count << " "
         << (count == 1 ? kKinds[i].Name : kKinds[i].Plural) << "\n";
  }
  if (overview.Missing == 0) {
    page << "<li>Keine Datei fehlt\n";
  } else {
    page << "<li><strong><svg aria-hidden=\"true\"><use href=\"#warning\"/></svg>" << overview.Missing
         << (overview.Missing == 1 ? " Datei" : " Dateien") << " nicht gefunden</strong>\n";
  }
  page << "</ul>\n";
}

/// Without the quotes and end tags that HTML can do without: there may be a hundred thousand rows.
void WriteRow(TPage& page, const TListingRow& row, bool severalPaths) {
  const TKind& kind = kKinds[KindOf(row.Image)];
  const std::int64_t level = std::max(row.Level, 0);
  page << "<tr style=--l:" << level << "><td>" << row.Key << "<th scope=row><svg role=img aria-label=\""
       << kind.Name << ", Ebene " << level + 1 << "\"><use href=#" << kind.Symbol << " /></svg>" << row.Name
       << "<td>" << row.File;
  if (row.Missing) {
    page << "<strong><svg aria-hidden=true><use href=#warning /></svg>Datei nicht gefunden!</strong>";
  }
  if (severalPaths) page << "<small>Gleicher Dateiname auch in einem anderen Ordner</small>";
  page << "\n";
}

}  // namespace

void WriteHtmlListing(TextView title, const TListingRows& rows, const TListingWriter& write) {
  TOverview overview;
  rows([&overview](const TListingRow& row) { overview.Add(row); });

  TPage page(write);
  TTemplate frame(page);
  for (int i = 0; i < 2; ++i) {  // in the page's head and as its heading
    frame.WriteUntil("@TITLE@");
    page << title;
  }
  frame.WriteUntil("@SUMMARY@\n");
  WriteSummary(page, overview);
  frame.WriteUntil("@ROWS@\n");
  std::size_t count = 0;
  rows([&](const TListingRow& row) {
    if (count++ % kRowsInBlock == 0) page << "<tbody>\n";
    WriteRow(page, row, overview.Names.HasSeveralPaths(row.File));
  });
  frame.WriteRest();
  page.Flush();
}
