#include "toolkit/caption.h"

#include "common/messages.h"

namespace px::tk {

std::string message_caption() {
  std::string text = messages::message_text(kCaptionMessage);
  const std::string number = "[" + std::to_string(kCaptionMessage) + "]";
  if (text.starts_with(number)) text.erase(0, number.size());
  return text;
}

}  // namespace px::tk
