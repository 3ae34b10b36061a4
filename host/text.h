// Host strings and host exceptions.
#pragma once

#include <cstdint>
#include <string>

#include "host/object.h"

namespace host {

// Bytes with a platform text-encoding code (kEncodingUnknown until one is set).
class Text : public Object {
 public:
  Text(std::string bytes, std::uint32_t encoding)
      : Object("String"), bytes_(std::move(bytes)), encoding_(encoding) {}
  const std::string& Bytes() const { return bytes_; }
  std::uint32_t Encoding() const { return encoding_; }
  void SetEncoding(std::uint32_t encoding) { encoding_ = encoding; }

  // The bytes in another encoding, of those that the platform codes in host_interface.h name.
  // UTF-16 and UTF-32 are little-endian; what cannot be converted becomes U+FFFD, or '?' where that
  // does not exist.
  std::string ConvertedTo(std::uint32_t encoding) const;

 private:
  std::string bytes_;
  std::uint32_t encoding_;
};

// An object of a host exception class.
class RuntimeException : public Object {
 public:
  explicit RuntimeException(std::string className) : Object(std::move(className)) {}
  bool SetInteger(const std::string& property, int value) override;    // "ErrorNumber"
  bool SetString(const std::string& property, Object* text) override;  // "Message"
  bool hasMessage = false;                                             // false after null was set
  std::string message;
  int errorNumber = -1;
};

// What the plug-in raised, copied at that moment.
struct RaisedException {
  std::string className;
  bool hasMessage = false;
  std::string message;
  int errorNumber = 0;
};

}  // namespace host
