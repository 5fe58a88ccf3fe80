/* A C program as users write it: linked with the MinGW import library and run. Exit status 0 when all is right. */
#include "vellum32.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    char text[64];
    GetTiffVersion(text, (LONG)sizeof text);
    printf("%s\n", text);
    if (strcmp(text, "Version 7.00") != 0) {
        return 1;
    }
    if (OpenTiffFile("no such file.tif", T_READ) != NULL || TiffError() != VELLUM_IO_ERROR) {
        return 2;
    }
    TiffErrorString(text, TiffError());
    printf("%s\n", text);
    return strcmp(text, "General I/O error in reading or writting.") == 0 ? 0 : 3;
}
