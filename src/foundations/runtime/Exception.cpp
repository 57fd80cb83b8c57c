#include "foundations/runtime/Exception.h"

#include <cstdio>
#include <cstdlib>

namespace Zel {

void throwRangeException(std::string_view text) { throw RangeException(std::string(text)); }

void throwMutatorArgNullPointerException(std::string_view attribute) {
  throw MutatorArgNullPointerException("Zel::MutatorArgNullPointerException: null argument to mutator of " +
                                       std::string(attribute));
}

void throwBacklogProcessingException(std::string_view method) {
  throw BacklogProcessingException("Zel::BacklogProcessingException: " + std::string(method) +
                                   " not allowed while the backlog is being processed");
}

std::string rangeText(std::string_view type) {
  std::string t(type);
  return t + "::value < " + t + "::min or > " + t + "::max not allowed";
}

namespace Impl {
void throwBadOptionalAccess() { throw BadOptionalAccess("Zel::Optional: access to an empty optional"); }
void throwMutatorReinstantiating(std::string_view attribute) {
  throw MutatorReinstantiatingException("Zel::MutatorReinstantiating: " + std::string(attribute) +
                                        " may be instantiated only once");
}
void throwMutatorReinstVal(std::string_view attribute) {
  throw MutatorReinstantiatingException("Zel::MutatorReinstVal: " + std::string(attribute) +
                                        " re-instantiated with different constructor arguments");
}
}  // namespace Impl

namespace PodArrayImpl {
void throwRangeException(std::uint32_t bound, std::uint32_t index) {
  throw RangeException("Zel::PodArray: index " + std::to_string(index) + " out of range for length " +
                       std::to_string(bound));
}
}  // namespace PodArrayImpl

}  // namespace Zel

namespace Quill::Impl {
void vfmassert(char const* text, char const* file, int line) {
  std::fprintf(stderr, "assertion failed: %s (%s:%d)\n", text, file, line);
  std::fflush(stderr);
  std::abort();
}
}  // namespace Quill::Impl
