// Proves at compile time that the list of exports and the public header agree: every listed name is declared, with
// exactly the listed bytes of stdcall arguments. Makes no code.
#include "vellum32.h"

namespace vellum {
namespace {

// Every argument takes a whole number of 4-byte stack words.
template <class R, class... A>
consteval unsigned stdcallBytes(R(VELLUMAPI *)(A...)) {
    return (0u + ... + ((sizeof(A) + 3) / 4 * 4));
}

#define VELLUM_EXPORT(name, bytes) static_assert(stdcallBytes(&::name) == bytes, #name);
#include "api/exports.inc"
#undef VELLUM_EXPORT

} // namespace
} // namespace vellum
