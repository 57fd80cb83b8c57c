// The runtime's exceptions. The logic throws only for programming errors and range violations;
// every throw goes through one of the functions below so that the texts stay the runtime's own.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Quill {

class Exception : public std::runtime_error {
 public:
  explicit Exception(std::string const& text) : std::runtime_error(text) {}
};

}  // namespace Quill

namespace Zel {

class RangeException : public Quill::Exception {
 public:
  using Quill::Exception::Exception;
};
class BadOptionalAccess : public Quill::Exception {
 public:
  using Quill::Exception::Exception;
};
class MutatorArgNullPointerException : public Quill::Exception {
 public:
  using Quill::Exception::Exception;
};
class MutatorReinstantiatingException : public Quill::Exception {
 public:
  using Quill::Exception::Exception;
};
class BacklogProcessingException : public Quill::Exception {
 public:
  using Quill::Exception::Exception;
};

[[noreturn]] void throwRangeException(std::string_view text);
[[noreturn]] void throwMutatorArgNullPointerException(std::string_view attribute);
[[noreturn]] void throwBacklogProcessingException(std::string_view method);

namespace Impl {
[[noreturn]] void throwBadOptionalAccess();
[[noreturn]] void throwMutatorReinstantiating(std::string_view attribute);
[[noreturn]] void throwMutatorReinstVal(std::string_view attribute);
}  // namespace Impl

namespace PodArrayImpl {
[[noreturn]] void throwRangeException(std::uint32_t bound, std::uint32_t index);
}

// The range text of a bounded integer type, as its range check raises it.
std::string rangeText(std::string_view type);

}  // namespace Zel

namespace Quill::Impl {
// A broken invariant: prints the assertion text and ends the process.
[[noreturn]] void vfmassert(char const* text, char const* file, int line);
}  // namespace Quill::Impl

// Assertion whose text is part of the contract; active in every build type.
#define QUILL_ASSERT(cond, text)                                        \
  do {                                                                  \
    if (!(cond)) [[unlikely]]                                           \
      ::Quill::Impl::vfmassert((text), __FILE__, __LINE__);             \
  } while (0)
