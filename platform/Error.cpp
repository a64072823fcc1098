#include "platform/Error.h"

#include <utility>

#include "platform/System.h"

namespace {

UnicodeString InputOutputText(std::int32_t code) {
  switch (code) {
    case 2:
      return u"Datei nicht gefunden";
    case kInvalidFileName:
      return u"Ungültiger Dateiname";
    case 4:
      return u"Zu viele geöffnete Dateien";
    case kAccessDenied:
      return u"Dateizugriff verweigert";
    case 100:
      return u"Lesen hinter dem Dateiende";
    case 101:
      return u"Datenträger voll";
    case 106:
      return u"Ungültige numerische Eingabe";
    default:
      return u"E/A-Fehler " + DecimalText(code);
  }
}

}  // namespace

EError::EError(TErrorKind kind, std::int32_t code, UnicodeString message, UnicodeString source)
    : fKind(kind),
      fCode(code),
      fMessage(std::move(message)),
      fSource(std::move(source)),
      fUtf8(Utf8FromText(fMessage)) {}

EError InputOutputError(std::int32_t code) {
  return {TErrorKind::InputOutput, code, InputOutputText(code)};
}

EError ComponentError(std::int32_t result, UnicodeString description, UnicodeString source) {
  const TextView shown = TextView(description).substr(0, description.find(u'\0'));
  if (shown.find_first_not_of(u" \t\r\n") == TextView::npos) description = SystemErrorText(result);
  return {TErrorKind::Component, result, std::move(description), std::move(source)};
}
