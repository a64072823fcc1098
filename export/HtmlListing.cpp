#include "export/HtmlListing.h"

#include <algorithm>
#include <utility>

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
constexpr std::array<TKind, THtmlListing::kKindCount> kKinds = {
    TKind{ICON_PART, "part", "Bauteil", "Bauteile"},
    TKind{ICON_ASSEMBLY, "assembly", "Baugruppe", "Baugruppen"},
    TKind{ICON_DRAWING, "drawing", "Zeichnung", "Zeichnungen"},
};

/// Its place among the kinds; a part's for an image that is none of them.
std::size_t KindOf(int image) {
  const auto found = std::ranges::find(kKinds, image, &TKind::Image);
  return found != kKinds.end() ? static_cast<std::size_t>(found - kKinds.begin()) : 0;
}

bool IsAscii(TextView text) {
  return std::ranges::all_of(text, [](char16_t c) { return c < 0x80; });
}

/// Equal for names that a folder of the archive cannot hold both. Most names are plain, and asking the locale
/// for each would take longer than all else here.
std::string NameKey(TextView name) {
  if (!IsAscii(name)) return SameTextKey(name);
  std::string key;
  for (const char16_t c : name) key += static_cast<char>(c >= u'A' && c <= u'Z' ? c + 0x20 : c);
  return key;
}

/// Controls and non-characters may not stand in a page.
bool IsPermitted(char32_t c) {
  if (c < 0x20) return c == U'\t' || c == U'\n' || c == U'\f' || c == U'\r';
  if (c >= 0x7F && c < 0xA0) return false;
  return (c & 0xFFFE) != 0xFFFE && (c < 0xFDD0 || c > 0xFDEF);
}

std::string_view Escape(char32_t c) {
  switch (c) {
    case U'&':
      return "&amp;";
    case U'<':
      return "&lt;";
    case U'>':
      return "&gt;";
    case U'"':
      return "&quot;";
    case U'\'':
      return "&#39;";
    default:
      return {};
  }
}

/// What a page cannot hold becomes U+FFFD.
void AppendText(std::string& page, TextView text) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCodePoint(text, at);
    const std::string_view escape = Escape(c);
    page += escape;
    if (escape.empty()) AppendUtf8(page, IsPermitted(c) ? c : 0xFFFD);
  }
}

std::string Escaped(TextView text) {
  std::string result;
  AppendText(result, text);
  return result;
}

std::string_view FateText(TFileFate fate) {
  return fate == TFileFate::NotFound ? "Datei nicht gefunden!" : "Datei konnte nicht kopiert werden!";
}

}  // namespace

/// Gathers the page and hands it on in pieces.
class THtmlListing::TPage {
 public:
  explicit TPage(const THtmlListing::TWriter& write) : fWrite(write) {
    fPiece.reserve(kPieceSize + kPieceSize / 2);
  }

  TPage& operator<<(std::string_view markup) {
    for (; fPiece.size() + markup.size() > kPieceSize; Flush()) {
      const std::size_t count = kPieceSize - fPiece.size();
      fPiece += markup.substr(0, count);
      markup.remove_prefix(count);
    }
    fPiece += markup;
    return *this;
  }
  TPage& operator<<(std::int64_t number) { return *this << std::string_view(std::to_string(number)); }
  /// Writes the template up to its next mark, which stands for what comes next.
  void TemplateUntil(std::string_view mark) {
    const std::size_t end = fTemplate.find(mark);
    *this << fTemplate.substr(0, end);
    fTemplate.remove_prefix(end + mark.size());
  }
  void TemplateRest() { *this << std::exchange(fTemplate, {}); }
  void Flush() {
    if (!fPiece.empty()) fWrite(fPiece);
    fPiece.clear();
  }

 private:
  const THtmlListing::TWriter& fWrite;
  std::string fPiece;
  std::string_view fTemplate = kListingPage;
};

/// Without the quotes and end tags that HTML can do without: there may be a hundred thousand rows.
void THtmlListing::AddRow(const TListingRow& row) {
  const std::size_t kind = KindOf(row.Image);
  const int level = std::max(row.Level, 0);
  ++fCounts[kind];
  fMarkup.append("<tr style=--l:").append(std::to_string(level)).append("><td>");
  AppendText(fMarkup, row.Key);
  fMarkup.append("<th scope=row><svg role=img aria-label=\"").append(kKinds[kind].Name).append(", Ebene ");
  fMarkup.append(std::to_string(level + 1)).append("\"><use href=#").append(kKinds[kind].Symbol);
  fMarkup.append(" /></svg>");
  AppendText(fMarkup, row.Name);
  fMarkup += "<td>";
  AppendText(fMarkup, row.File);
  if (row.Fate != TFileFate::Packed) {
    ++fMissing;
    fMarkup += "<strong><svg aria-hidden=true><use href=#warning /></svg>";
    fMarkup.append(FateText(row.Fate)).append("</strong>");
  }
  fRows.push_back({fMarkup.size(), NameOf(row.File)});
}

const THtmlListing::TFileName* THtmlListing::NameOf(TextView path) {
  const TextView name = StagedName(path);
  if (name.empty()) return nullptr;
  const auto [entry, isNew] = fNames.try_emplace(NameKey(name));
  TFileName& known = entry->second;
  if (isNew) known.Path = path;
  if (known.Path != path && !SameText(known.Path, path)) known.HasSeveral = true;
  return &known;
}

void THtmlListing::Write(TextView title, TextView warning, const TWriter& write) const {
  TPage page(write);
  for (int i = 0; i < 2; ++i) {  // in the page's head and as its heading
    page.TemplateUntil("@TITLE@");
    page << Escaped(title);
  }
  page.TemplateUntil("@SUMMARY@\n");
  WriteSummary(page, warning);
  page.TemplateUntil("@ROWS@\n");
  WriteRows(page);
  page.TemplateRest();
  page.Flush();
}

/// The counts; the images beside them double as a legend.
void THtmlListing::WriteSummary(TPage& page, TextView warning) const {
  constexpr std::string_view kWarningSign = "<svg aria-hidden=\"true\"><use href=\"#warning\"/></svg>";
  if (!warning.empty()) page << "<p><strong>" << kWarningSign << Escaped(warning) << "</strong></p>\n";
  page << "<ul>\n";
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    page << "<li><svg aria-hidden=\"true\"><use href=\"#" << kKinds[i].Symbol << "\"/></svg>" << fCounts[i]
         << " " << (fCounts[i] == 1 ? kKinds[i].Name : kKinds[i].Plural) << "\n";
  }
  if (fMissing != 0) {
    page << "<li><strong>" << kWarningSign << fMissing << (fMissing == 1 ? " Datei fehlt" : " Dateien fehlen")
         << "</strong>\n";
  }
  page << "</ul>\n";
}

void THtmlListing::WriteRows(TPage& page) const {
  const std::string_view markup = fMarkup;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < fRows.size(); ++i) {
    if (i % kRowsInBlock == 0) page << "<tbody>\n";
    page << markup.substr(begin, fRows[i].End - begin);
    if (fRows[i].Name != nullptr && fRows[i].Name->HasSeveral) {
      page << "<small>Gleicher Dateiname auch in einem anderen Ordner</small>";
    }
    page << "\n";
    begin = fRows[i].End;
  }
}
