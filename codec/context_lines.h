// Line functions with a context of their own, as the drivers take them.
#pragma once

#include "vellum32.h"

namespace vellum {

// Such a function as a LineFunc, whose user value is the context's address.
template <auto lineFunction>
struct ContextLineFunc;
template <class Row, class Context, DWORD(VELLUMAPI *lineFunction)(BYTE *, Row, Context *)>
struct ContextLineFunc<lineFunction> {
    static DWORD VELLUMAPI call(BYTE *line, DWORD row, DWORD userValue) {
        return lineFunction(line, static_cast<Row>(row), reinterpret_cast<Context *>(static_cast<UINT_PTR>(userValue)));
    }
};
template <auto lineFunction>
inline constexpr LineFunc asLineFunc = &ContextLineFunc<lineFunction>::call;

// The address of a context as a user value.
template <class Context>
DWORD userValueOf(Context &context) {
    return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(&context));
}

} // namespace vellum
