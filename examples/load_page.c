/* Loads the first page of a TIFF as a packed DIB, ready for StretchDIBits or the clipboard. */
#include "vellum32.h"
#include <stdio.h>

int main(int argc, char **argv) {
    char message[64];
    HGLOBAL dib = argc > 1 ? LoadTiffIntoDIB(argv[1], 0, FALSE) : NULL;
    const BITMAPINFOHEADER *header = dib ? (const BITMAPINFOHEADER *)GlobalLock(dib) : NULL;
    if (header == NULL)
        return fprintf(stderr, "%s\n", TiffErrorString(message, TiffError())), 1;
    printf("%ld x %ld pixels, %d bits each\n", header->biWidth, header->biHeight, header->biBitCount);
    GlobalUnlock(dib);
    return GlobalFree(dib) != NULL;
}
