#pragma once
// An EnumWordValue that persists: one class, version 1, whose one member
// "m_value" is the enumerator as an integer. `Derived` declares the two
// statics it is stored under, `iceStaticClass` and `iceValueEnum`.

#include "machine/machine/EnumWordValue.h"
#include "nc/Persist.h"
#include "nc/PersistClass.h"
#include "nc/PersistEnum.h"

namespace machine {

template <typename Derived, typename Enum>
class PersistentEnumWordValue : public EnumWordValue<Derived, Enum> {
public:
  using EnumWordValue<Derived, Enum>::EnumWordValue;

  // Virtual, with no virtual destructor: a small value that persists
  // polymorphically but is never deleted through a base.
  virtual persist::PersistClass const& iceDynamicClass() const { return Derived::iceStaticClass; }
  virtual void iceListMembers(persist::Persist const& persist) {
    // The value is the base's; it is read through a copy and set whole.
    Enum number = this->value();
    persist.beginClass(Derived::iceStaticClass);
    persist::serializeEnum(persist, "m_value", number, Derived::iceValueEnum);
    persist.endClass();
    if (persist.isReading()) static_cast<Derived&>(*this) = Derived(number);
  }

protected:
  ~PersistentEnumWordValue() = default;
};

}  // namespace machine
