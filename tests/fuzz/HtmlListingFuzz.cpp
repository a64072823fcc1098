// Whatever the texts say, the listing's page is UTF-8, its tags stay the same, and "&" begins an escape. An
// input is texts between 0xFE: the title, then for each row what it is, its key, name and folder.

#include "export/HtmlListing.h"

#include <algorithm>
#include <deque>
#include <string>

#include "tests/fuzz/Fuzz.h"

namespace {

std::string Listing(TextView title, const std::vector<TListingRow>& rows) {
  THtmlListing listing;
  for (const TListingRow& row : rows) listing.AddRow(row);
  std::string page;
  listing.Write(title, UnicodeString(title) + u"!", [&page](std::string_view piece) { page += piece; });
  return page;
}

std::string Tags(std::string_view page) {
  std::string tags;
  for (const std::string_view part : fuzz::Split(page, '<'))
    tags.append("<").append(part.substr(0, part.find('>') + 1));
  return tags;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<UnicodeString> texts;
  for (const std::string_view text : fuzz::Split(fuzz::Bytes(data, size), '\xFE'))
    texts.push_back(fuzz::AnyText(text));
  std::vector<TListingRow> rows, plain;
  std::deque<UnicodeString> files;
  for (std::size_t i = 4; i < texts.size(); i += 4) {
    const int kind = texts[i - 3].empty() ? 0 : texts[i - 3].front();
    const TFileFate fate = kind % 8 >= 4 ? TFileFate::NotFound : TFileFate::Packed;
    const UnicodeString& file = files.emplace_back(u"\\" + DecimalText(static_cast<std::int64_t>(i)));
    const UnicodeString& path = files.emplace_back(texts[i] + file);
    rows.push_back({kind / 8, kind % 4, texts[i - 2], texts[i - 1], path, fate});
    plain.push_back({kind / 8, kind % 4, u"", u"", file, fate});
  }
  const std::string page = Listing(texts.front(), rows);
  fuzz::Require(Utf8FromText(TextFromUtf8(page)) == page, "the page is UTF-8");
  fuzz::Require(Tags(page) == Tags(Listing(u"", plain)), "the tags");
  for (std::string_view rest = page; rest.find('&') != std::string_view::npos; rest.remove_prefix(1)) {
    rest.remove_prefix(rest.find('&'));
    const auto begins = [rest](std::string_view escape) { return rest.starts_with(escape); };
    constexpr std::string_view kEscapes[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
    fuzz::Require(std::ranges::any_of(kEscapes, begins), "an escape");
  }
  return 0;
}
