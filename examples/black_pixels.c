/* Counts the black pixels of the first page of a fax, line by line, without holding the page in memory. */
#include "vellum32.h"

#include <stdio.h>

static DWORD VELLUMAPI count(BYTE *line, DWORD lineIndex, DWORD userValue) {
    DWORD *black = (DWORD *)(UINT_PTR)userValue;
    DWORD x, width = black[1];
    (void)lineIndex;
    for (x = 0; x < width; ++x) {
        black[0] += (DWORD)(line[x / 8] >> (7 - x % 8)) & 1;
    }
    return 0; /* go on */
}

int main(int argc, char **argv) {
    DWORD black[2] = {0, 0}; /* the count, the width */
    TiffHandle tiff = OpenTiffFile(argc > 1 ? argv[1] : "", T_READ);
    char message[64];
    if (tiff != NULL && GetTiffImage(tiff, 0) && GetTiffImageInfo(tiff, 0, 256, &black[1]) &&
        DecodeTiffImage(tiff, 0, 0, 0, (DWORD)(UINT_PTR)black, count)) {
        printf("%lu black pixels\n", black[0]);
    } else {
        fprintf(stderr, "%s\n", TiffErrorString(message, TiffError()));
    }
    return CloseTiffFile(tiff) ? 0 : 1;
}
