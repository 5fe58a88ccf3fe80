// The fill functions as line functions of the encode driver. The exported ones are in vellum32.h.
#pragma once

#include "vellum32.h"

namespace vellum {

// One of the fill functions as a LineFunc, whose user value is the context's address.
template <auto fill>
struct FillLineFunc;

template <class Context, DWORD(VELLUMAPI *fill)(BYTE *, DWORD, Context *)>
struct FillLineFunc<fill> {
    static DWORD VELLUMAPI call(BYTE *line, DWORD row, DWORD userValue) {
        return fill(line, row, reinterpret_cast<Context *>(static_cast<UINT_PTR>(userValue)));
    }
};

template <auto fill>
constexpr LineFunc kFillLines = &FillLineFunc<fill>::call;

// The user value that goes with it.
template <class Context>
DWORD userValueOf(Context &context) {
    return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(&context));
}

// As DllFillTiffLineDIB, every byte complemented.
DWORD VELLUMAPI fillComplementedDibLine(BYTE *line, DWORD index, SaveLineContext *context);

} // namespace vellum
