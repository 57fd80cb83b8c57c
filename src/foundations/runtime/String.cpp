#include "foundations/runtime/String.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace Quill {

String::String(std::string_view text) {
  if (text.empty()) return;
  void* mem = std::malloc(offsetof(Block, text) + text.size() + 1);
  if (!mem) throw std::bad_alloc();
  block_ = static_cast<Block*>(mem);
  block_->refs = 1;
  block_->size = std::uint32_t(text.size());
  std::memcpy(block_->text, text.data(), text.size());
  block_->text[text.size()] = '\0';
}

void String::release() noexcept {
  if (block_ && --block_->refs == 0) std::free(block_);
  block_ = nullptr;
}

String String::addLeft(std::string_view text) const {
  std::string joined(text);
  joined.append(view());
  return String(joined);
}

String String::addRight(std::string_view text) const {
  std::string joined(view());
  joined.append(text);
  return String(joined);
}

}  // namespace Quill
