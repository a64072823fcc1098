#include "platform/System.h"

#include <gtest/gtest.h>

#include <string_view>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/Profile.h"

// What every back end owes to the callers of the system.

TEST(SystemContract, MissingValuesGiveDefaults) {
  EXPECT_EQ(EnvironmentVariable(u"VELMORA_GIBT_ES_NICHT"), u"");
  EXPECT_EQ(
      ReadProfileText(EnvironmentVariable(u"TEMP") + u"\\fehlt.ini", u"Inventor", u"Schlüssel", u"Vorgabe ä"),
      u"Vorgabe ä");
  EXPECT_EQ(SystemErrorText(HResult(0xA0ABCDEF)), u"Systemfehler A0ABCDEF");
  const UnicodeString known = SystemErrorText(kClassNotRegistered);
  EXPECT_FALSE(known.empty());
  EXPECT_NE(known.back(), u'\n');
}

TEST(SystemContract, ReadsProfileValues) {
  constexpr std::string_view kProfile =
      "[A]\r\nk=1\r\n b = v \r\n\tt\t=\tv\t\r\nq=\" x \"\r\nq2='x'\r\nq3=\"x\r\nq4=\"x\" "
      "y\r\nq5=\"\"\r\nq6=\"\r\n"
      "q7=\"a\"b\"\r\nq8=\"x'\r\ne==v\r\nleer=\r\nk=9\r\n ;c=2\r\nc2=v ;rest\r\nohne\r\nu=\xE4\r\n"
      "[B\r\nk=2\r\n[ C ]\r\nk=3\r\n  [D]\r\nk=4\r\n[E]]\r\nk=5\r\n[F] rest\r\nk=6\r\n"
      "[A]\r\nk=7\r\nz=7\r\n[a]\nk=8\n[G]\nk=10\rl=11\n[H]\r\nk=\"ende";
  struct {
    TextView Section;
    TextView Key;
    TextView Value;
  } const cases[] = {
      {u"A", u"k", u"1"},    {u"a", u"K", u"1"},   {u"A", u"b", u"v"},     {u"A", u"t", u"v"},
      {u"A", u"q", u" x "},  {u"A", u"q2", u"x"},  {u"A", u"q3", u"\"x"},  {u"A", u"q4", u"\"x\" y"},
      {u"A", u"q5", u""},    {u"A", u"q6", u"\""}, {u"A", u"q7", u"a\"b"}, {u"A", u"q8", u"\"x'"},
      {u"A", u"e", u"=v"},   {u"A", u"leer", u""}, {u"A", u"c", u"-"},     {u"A", u"c2", u"v ;rest"},
      {u"A", u"ohne", u"-"}, {u"A", u"u", u"ä"},   {u"A", u"z", u"-"},     {u"B", u"k", u"-"},
      {u"C", u"k", u"3"},    {u"D", u"k", u"4"},   {u"E", u"k", u"-"},     {u"E]", u"k", u"5"},
      {u"F", u"k", u"6"},    {u"G", u"k", u"10"},  {u"G", u"l", u"11"},    {u"H", u"k", u"\"ende"},
  };
  const UnicodeString file = EnvironmentVariable(u"TEMP") + u"\\Werte.ini";
  TOutputFile(file, TCreate::Replace).Write(kProfile);
  FlushProfile(file);
  for (const auto& test : cases) {
    EXPECT_EQ(Utf8FromText(ReadProfileText(file, test.Section, test.Key, u"-")), Utf8FromText(test.Value))
        << Utf8FromText(test.Section) << " " << Utf8FromText(test.Key);
  }
}
