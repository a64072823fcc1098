#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "platform/DispatchTarget.h"
#include "platform/Error.h"
#include "platform/System.h"
#include "platform/Variant.h"

// What every back end owes to the callers of TDispatch.

namespace {

constexpr std::int32_t kEcho = 0x03001D03;  // answers its first argument
constexpr std::int32_t kFails = 0x7F000006;

class TTarget : public TDispatchTarget {
 public:
  TVariant Invoke(std::int32_t id, TInvokeKind, std::span<const TVariant> arguments) override {
    if (id == kFails) throw Fail;
    return arguments[0];
  }

  EError Fail{TErrorKind::Component, 0, {}};
};

template <class TAction>
EError ErrorOf(const TAction& action) {
  try {
    action();
  } catch (const EError& error) {
    return error;
  }
  return {TErrorKind::System, 0, u"no error"};
}

class DispatchContract : public testing::Test {
 protected:
  std::shared_ptr<TTarget> target = std::make_shared<TTarget>();
  TDispatch object = MakeDispatch(target);

  TVariant Echo(const TVariant& value) {
    const std::array arguments{value};
    return object.Invoke(kEcho, TInvokeKind::Method, arguments);
  }

  EError Failure(const EError& failing) {
    target->Fail = failing;
    return ErrorOf([this] { object.Invoke(kFails, TInvokeKind::Get); });
  }
};

}  // namespace

TEST_F(DispatchContract, ValuesRoundTrip) {
  EXPECT_EQ(Echo(TVariant::Tagged(TVarType::Null)).Type(), TVarType::Null);
  EXPECT_EQ(Echo(TVariant::Int16(-7)).AsInteger(), -7);
  EXPECT_EQ(Echo(TVariant::Int32(-2147483647 - 1)).AsInteger(), -2147483647 - 1);
  EXPECT_EQ(Echo(TVariant::Single(0.5F)).Type(), TVarType::Single);
  EXPECT_EQ(Echo(TVariant::Double(1e300)).AsDouble(), 1e300);
  EXPECT_EQ(Echo(TVariant::Date(45000.25)).Type(), TVarType::Date);
  // Any non-zero value is true and crosses as it is.
  EXPECT_EQ(Echo(TVariant::Boolean(5)).AsVariantBool(), 5);
  EXPECT_FALSE(Echo(TVariant::Boolean(0)).AsBoolean());
  const UnicodeString text = u"ä€\U0001F600" + UnicodeString(1, u'\0') + u"mit Nullzeichen";
  EXPECT_EQ(Echo(TVariant::Text(text)).AsText(), text);
  EXPECT_EQ(Echo(TVariant::Text({})).Type(), TVarType::Text);
  EXPECT_THROW(static_cast<void>(Echo(TVariant::Int32(1)).AsText()), EError);
}

TEST_F(DispatchContract, ErrorsCarryDescriptionOrSystemText) {
  const EError described =
      Failure({TErrorKind::Component, HResult(0x80004005), u"Zeile 1\r\nÄndern verweigert €", u"Quelle"});
  EXPECT_EQ(described.Kind(), TErrorKind::Component);
  EXPECT_EQ(described.Code(), HResult(0x80004005));
  EXPECT_EQ(described.Message(), u"Zeile 1\r\nÄndern verweigert €");
  EXPECT_EQ(described.Source(), u"Quelle");

  // A description that would show nothing counts as none; an error without a code is an exception.
  for (const UnicodeString& text : {UnicodeString(), UnicodeString(u" \r\n"), UnicodeString(u"\0x", 2)}) {
    const EError shown = Failure({TErrorKind::Component, kBadIndex, text});
    EXPECT_EQ(shown.Code(), kBadIndex);
    EXPECT_EQ(shown.Message(), SystemErrorText(kBadIndex));
  }
  const EError exception = Failure({TErrorKind::Component, 0, u"ohne Code"});
  EXPECT_EQ(exception.Code(), kException);
  EXPECT_EQ(exception.Message(), u"ohne Code");
  const auto callNothing = [] { TDispatch().Invoke(kEcho, TInvokeKind::Get); };
  EXPECT_EQ(ErrorOf(callNothing).Code(), kTypeMismatch);
}

TEST_F(DispatchContract, RejectsUnknownClass) {
  const TComApartment apartment;
  constexpr TGuid kNobody{0x2B1C3D4E, 0x5F60, 0x4172, {0x83, 0x94, 0xA5, 0xB6, 0xC7, 0xD8, 0xE9, 0xFA}};
  const EError error = ErrorOf([&] { CreateInstance(kNobody, kNobody); });
  EXPECT_EQ(error.Code(), kClassNotRegistered);
  EXPECT_FALSE(error.Message().empty());
}
