#include "export/HtmlListing.h"

#include <algorithm>
#include <functional>
#include <span>
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

/// Appends one byte for each character.
template <class TByteOf>
void AppendBytes(std::string& bytes, TextView text, TByteOf byteOf) {
  const std::size_t size = bytes.size();
  bytes.resize(size + text.size());
  std::ranges::transform(text, bytes.begin() + static_cast<std::ptrdiff_t>(size),
                         [byteOf](char16_t c) { return static_cast<char>(byteOf(c)); });
}

/// Appends bytes that are equal for names that a folder cannot hold both. Most file names are plain, and
/// asking the locale for each would take longer than all else here.
void AppendKey(std::string& keys, TextView text) {
  if (IsAscii(text)) {
    AppendBytes(keys, text, [](char16_t c) { return c >= u'A' && c <= u'Z' ? c + 0x20 : c; });
  } else {
    keys += SameTextKey(text);
  }
}

/// Sorts by `projection`, and hands on one after the other those for which it is the same.
template <class T, class TProjection, class TAction>
void ForEachGroup(std::span<T> all, TProjection projection, TAction action) {
  std::ranges::sort(all, {}, projection);
  while (!all.empty()) {
    const auto isOther = [&](const T& one) {
      return std::invoke(projection, one) != std::invoke(projection, all.front());
    };
    const auto count = static_cast<std::size_t>(std::ranges::find_if(all, isOther) - all.begin());
    action(all.first(count));
    all = all.subspan(count);
  }
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

/// Whether it stands in a page as it is, as one byte.
bool IsPlain(char16_t c) {
  return c >= 0x20 && c < 0x7F && Escape(c).empty();
}

/// What a page cannot hold becomes U+FFFD.
void AppendText(std::string& page, TextView text) {
  while (!text.empty()) {
    auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, IsPlain) - text.begin());
    AppendBytes(page, text.substr(0, end), std::identity());
    if (end < text.size()) {
      const char32_t c = NextCodePoint(text, end);
      const std::string_view escape = Escape(c);
      page += escape;
      if (escape.empty()) AppendUtf8(page, IsPermitted(c) ? c : 0xFFFD);
    }
    text.remove_prefix(end);
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
  AddName(row.File);
  fRows.push_back(fMarkup.size());
}

void THtmlListing::AddName(TextView path) {
  const TextView name = StagedName(path);
  if (name.empty()) return;
  std::string folder;
  AppendKey(folder, path.substr(0, path.size() - name.size()));
  const std::size_t key = fKeys.size();
  AppendKey(fKeys, name);
  const std::string_view added = std::string_view(fKeys).substr(key);
  fNames.push_back({std::hash<std::string_view>()(added), key, added.size(),
                    &*fFolders.insert(std::move(folder)).first, fRows.size()});
}

/// For each row whether another folder, too, has a file of this name.
std::vector<bool> THtmlListing::RowsWithSharedNames() const {
  std::vector<bool> shared(fRows.size());
  std::vector<TFileName> names = fNames;
  const auto key = [this](const TFileName& name) {
    return std::string_view(fKeys).substr(name.Key, name.KeySize);
  };
  const auto inOneFolder = [](std::span<const TFileName> group) {
    return std::ranges::all_of(group,
                               [&](const TFileName& name) { return name.Folder == group.front().Folder; });
  };
  // Comparing the hashes first, as numbers, leaves only a few names to be looked at.
  ForEachGroup(std::span(names), &TFileName::Hash, [&](std::span<TFileName> alike) {
    if (inOneFolder(alike)) return;
    ForEachGroup(alike, key, [&](std::span<const TFileName> same) {
      if (inOneFolder(same)) return;
      for (const TFileName& name : same) shared[name.Row] = true;
    });
  });
  return shared;
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
  const std::vector<bool> shared = RowsWithSharedNames();
  std::size_t begin = 0;
  for (std::size_t i = 0; i < fRows.size(); ++i) {
    if (i % kRowsInBlock == 0) page << "<tbody>\n";
    page << markup.substr(begin, fRows[i] - begin);
    if (shared[i]) page << "<small>Gleicher Dateiname auch in einem anderen Ordner</small>";
    page << "\n";
    begin = fRows[i];
  }
}
