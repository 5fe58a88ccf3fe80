/* Loads the first page of a TIFF as a packed DIB, ready for StretchDIBits or the clipboard. */
#include "vellum32.h"
#include <stdio.h>

int main(int argc, char **argv) {
    char message[64];
    HGLOBAL dib = LoadTiffIntoDIB(argc > 1 ? argv[1] : "page.tif", 0, FALSE);
    const BITMAPINFOHEADER *header = dib ? (const BITMAPINFOHEADER *)GlobalLock(dib) : NULL;
    if (header == NULL)
        return fprintf(stderr, "%s\n", TiffErrorString(message, TiffError())), 1;
    printf("%ld x %ld pixels, %d bits each\n", header->biWidth, header->biHeight, header->biBitCount);
    GlobalUnlock(dib);
    return GlobalFree(dib) != NULL;
}
