/* A program without a C library, linked by an MSVC-style linker with vellum32.lib, and run. Exit status 0 when all is
 * right. */
#include "vellum32.h"

void __stdcall start(void);

void __stdcall start(void) {
    char text[16];
    UINT status = 0;
    GetTiffVersion(text, 16);
    if (text[8] != '7' || text[12] != '\0') {
        status = 1;
    } else if (OpenTiffFile("no such file.tif", T_READ) != NULL || TiffError() != VELLUM_IO_ERROR) {
        status = 2;
    } else if (SetTiffError(VELLUM_OK) != VELLUM_IO_ERROR || TiffError() != VELLUM_OK) {
        status = 3;
    }
    ExitProcess(status);
}
