// Host strings.
#include "host/text.h"

#include "host/text_encoding.h"

namespace host {

std::string Text::ConvertedTo(std::uint32_t encoding) const {
  return EncodeText(DecodeText(bytes_, encoding_), encoding);
}

}  // namespace host
