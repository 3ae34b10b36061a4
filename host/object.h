// A host object as a plug-in sees it: a handle with a reference count. Every object belongs to the
// runtime's ledger, which keeps it (dead, its pixel memory unmapped) after its last reference is
// gone, so that a later use is recognised instead of being undefined.
#pragma once

#include <string>

namespace host {

class Ledger;

class Object {
 public:
  explicit Object(std::string className) : className_(std::move(className)) {}
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  const std::string& ClassName() const { return className_; }
  // "Picture#3": the class and the object's number, counted from 1 over all objects of the runtime.
  std::string Name() const { return className_ + "#" + std::to_string(number_); }
  int Number() const { return number_; }
  int References() const { return references_; }
  bool Alive() const { return references_ > 0; }

  // Reads or writes a property, its name in any case; false when the object has none of that name
  // and type.
  virtual bool GetInteger(const std::string& property, int& value) const;
  virtual bool GetBoolean(const std::string& property, bool& value) const;
  virtual bool SetInteger(const std::string& property, int value);
  virtual bool SetString(const std::string& property, Object* text);

  // The last reference is gone: gives up what the object owns.
  virtual void OnDeath(Ledger& /*ledger*/) {}

 private:
  friend class Ledger;
  std::string className_;
  int number_ = 0;
  int references_ = 0;
};

// The handle that stands for an object outside the host, and null for null.
template <typename Handle>
Handle HandleOf(Object* object) {
  return reinterpret_cast<Handle>(object);
}

// Whether two names are the same to the host's language, which ignores the case of ASCII letters.
bool SameName(const std::string& a, const std::string& b);

}  // namespace host
