/* Wraps a bilevel page as an image object behind a MO:DCA introducer: 1728 x 1100 pixels, 200 dpi, MMR code. */
#include "vellum32.h"

#include <stdio.h>
#include <string.h>

static DWORD VELLUMAPI draw(BYTE *line, DWORD lineIndex, DWORD userValue) {
    (void)userValue;
    memset(line, lineIndex % 100 < 3 ? 0xFF : 0, 1728 / 8); /* rules */
    return 0;
}

int main(int argc, char **argv) {
    /*
     * The 30 bytes before WriteMODCAHeader's: a Begin Document with a name, a No Operation that fills up, and the
     * length of the field that WriteMODCAHeader begins, which WriteMODCATail puts in.
     */
    static const char fields[] = "\0\x10\xD3\xA8\xA8\0\0\0EXAMPLE1"
                                 "\0\x0C\xD3\xEE\xEE\0\0\0    "
                                 "\0"; /* and the terminator makes 30 */
    IocaHeader header = {0, 0, 2000, 2000, 1728, 1100, 0, 0, 0};
    HFILE file = argc == 2 ? _lcreat(argv[1], 0) : HFILE_ERROR;
    int done;
    if (file == HFILE_ERROR) {
        return fprintf(stderr, "usage: modca_page NEW.ioca (or the file cannot be made)\n"), 2;
    }
    done = _lwrite(file, fields, sizeof fields) == sizeof fields && WriteMODCAHeader(file, &header) &&
           EncodeMMRImage(file, header.width, header.height, 0, 0, draw) && WriteMODCATail(file);

    /* And back: where the image's data begin. */
    memset(&header, 0, sizeof header);
    done = done && _llseek(file, 0, 0) == 0 && ReadMODCAHeader(file, &header);
    printf("%u x %u pixels, data at %lu\n", header.width, header.height, header.firstBlockPosition);
    return _lclose(file) != 0 || !done;
}
