/* Writes two pages of a fax, line by line: Group 4, 1728 x 1100 pixels, 204 x 98 dpi. */
#include "vellum32.h"

#include <stdio.h>
#include <string.h>

/* A bar code: white and black bars, wider from page to page. */
static DWORD VELLUMAPI draw(BYTE *line, DWORD lineIndex, DWORD page) {
    DWORD x;
    memset(line, 0, 1728 / 8);
    for (x = 100; lineIndex >= 100 && lineIndex < 1000 && x < 1628; ++x) {
        if (x / (8 * page) % 2 == 0) {
            line[x / 8] = (BYTE)(line[x / 8] | 0x80 >> x % 8);
        }
    }
    return 0; /* go on */
}

static DWORD addPage(const char *path, DWORD page) {
    BITMAP size = {0, 1728, 1100, 216, 1, 1, NULL};
    TiffHandle tiff = OpenTiffFile(path, page == 1 ? T_CREAT : T_APPEND);
    LONG image = DefineTiffImage(tiff);
    DWORD index = (DWORD)image;
    DWORD done = image >= 0 && DefineTiffImageInfo(tiff, index, 259, 3, 4) && /* Compression: Group 4 */
                 DefineGeneralTags(tiff, index, size) == 0 &&
                 DefineTiffImageInfo(tiff, index, 262, 3, 0) && /* PhotometricInterpretation: WhiteIsZero */
                 SetTiffImageDPI(tiff, index, 204 << 16 | 98) == 0 && EncodeTiffImage(tiff, index, page, draw);
    CloseTiffFile(tiff);
    return done;
}

int main(int argc, char **argv) {
    char message[64];
    if (argc != 2) {
        return fprintf(stderr, "usage: save_page NEW.tif\n"), 2;
    }
    if (addPage(argv[1], 1) && addPage(argv[1], 2)) {
        return printf("%lu pages\n", GetNumberOfImagesInTiffFile(argv[1])) < 0;
    }
    return fprintf(stderr, "%s\n", TiffErrorString(message, TiffError())), 1;
}
