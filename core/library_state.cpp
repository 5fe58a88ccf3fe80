// The library-wide variables, all in one place.
#include "core/library_state.h"

namespace vellum {

constinit LibraryState library;

} // namespace vellum
