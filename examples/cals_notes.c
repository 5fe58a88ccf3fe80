/*
 * Lists the texts of a CALS file's header and saves the picture again with another "notes" text.
 *   cals_notes IN.CAL OUT.CAL TEXT
 */
#include "vellum32.h"

#include <stdio.h>
#include <string.h>

#define TEXTS 7

/* A text that was read ends where the next one begins, the last one with a NUL: here each gets its own end. */
static void separate(const CalsNotes *read, char apart[TEXTS][128], CalsNotes *separated) {
    const char *const *from = &read->srcdocid;
    const char **to = &separated->srcdocid;
    int i, next;
    for (i = 0; i < TEXTS; i++) {
        for (next = i + 1; next < TEXTS && from[next] == NULL; next++) {
        }
        to[i] = NULL;
        if (from[i] != NULL) {
            const size_t length = next < TEXTS ? (size_t)(from[next] - from[i]) : strlen(from[i]);
            memcpy(apart[i], from[i], length);
            apart[i][length] = '\0';
            to[i] = apart[i];
        }
    }
}

static int failed(void) {
    char message[64];
    fprintf(stderr, "%s\n", TiffErrorString(message, TiffError()));
    return 1;
}

int main(int argc, char **argv) {
    char apart[TEXTS][128];
    CalsNotes read, notes;
    CalsInfo info;
    HGLOBAL texts, dib;
    DWORD saved;
    if (argc != 4) {
        fprintf(stderr, "cals_notes IN.CAL OUT.CAL TEXT\n");
        return 2;
    }
    if (!ReadCALSInfo(argv[1], &info) || (texts = ReadCALSNote(argv[1], &read)) == NULL)
        return failed();
    separate(&read, apart, &notes);
    GlobalFree(texts);
    printf("%ld x %ld pixels, %ld dots per inch\n", info.rpelcnt[0], info.rpelcnt[1], info.rdensty);
    printf("figid: %s\nnotes: %s\n", notes.figid ? notes.figid : "-", notes.notes ? notes.notes : "-");

    dib = LoadCALSIntoDIB(argv[1], FALSE);
    if (dib == NULL)
        return failed();
    notes.notes = argv[3];
    saved = SaveDIBInCALSFormat(argv[2], dib, &notes, info.rorient, FALSE);
    GlobalFree(dib);
    return saved ? 0 : failed();
}
