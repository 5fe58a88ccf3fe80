/*
 * vellum32.h - VELLUM32.DLL, a document-imaging library for 32-bit Windows programs.
 *
 * The one public header. It compiles alone as C89 to C17 and as C++11 to C++20. Link with the import library
 * (libVELLUM32.dll.a for MinGW, vellum32.lib for linkers of the MSVC style) or look the functions up with
 * GetProcAddress: the exported names are the plain ones below.
 *
 * Conventions that hold for every function:
 *  - Calling convention: stdcall (VELLUMAPI). The library must be called by one thread at a time.
 *  - Results: 1 (or a handle) for success and 0 for failure, unless a function's text says that it returns an error
 *    number. The reason for a failure is then TiffError(). A successful call leaves the error number as it was, unless
 *    its text says otherwise.
 *  - Memory: a block that the library hands out is movable global memory, unlocked; the receiver frees it with
 *    GlobalFree.
 *  - Images are counted from 0 in the order of the file's chain of image file directories.
 *
 * TIFF is used as in TIFF revision 6.0; modified Huffman and Group 3 coding are those of ITU-T T.4, Group 4 (MMR)
 * coding that of ITU-T T.6.
 */
#ifndef VELLUM32_H
#define VELLUM32_H

#include <windows.h>

/* The calling convention of every exported function and of every callback. */
#define VELLUMAPI __stdcall

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- values ------------------------------------------ */

/* Error numbers, as TiffError returns them. TiffErrorString gives their English messages. */
#define VELLUM_OK 0                   /* the operation was successful */
#define VELLUM_NO_MEMORY 1            /* not enough memory */
#define VELLUM_BAD_OPEN_MODE 2        /* a save could not open its file as a TIFF; the open calls accept every mode */
#define VELLUM_INDEX_OUT_OF_RANGE 3   /* image or tag index out of range; from a LineFunc: stop with success */
#define VELLUM_STRIP_OUT_OF_RANGE 4   /* strip index out of range */
#define VELLUM_UNEXPECTED_END 5       /* the data ended before the image was complete */
#define VELLUM_IO_ERROR 6             /* a file or stream could not be opened, positioned, read or written */
#define VELLUM_PATH_TOO_LONG 7        /* a path of more than 149 characters */
#define VELLUM_NOT_TIFF 8             /* the file has no valid TIFF header */
#define VELLUM_BAD_TAG 9              /* invalid directory tag */
#define VELLUM_TAG_MISSING 10         /* an indispensable tag is missing */
#define VELLUM_UNKNOWN_COMPRESSION 11 /* the Compression value, or its option, is not supported */
#define VELLUM_CODE_ERROR 12          /* the compressed data are damaged */
#define VELLUM_TAG_NOT_DEFINED 13     /* the directory has no such tag */
#define VELLUM_BAD_BYTE_ORDER 14      /* neither "II" nor "MM" */
#define VELLUM_BAD_FILL_ORDER 15      /* FillOrder is neither 1 nor 2 */
#define VELLUM_BAD_COLOR_FORMAT 16    /* not 1, 4, 8 or 24 bits per pixel, or more than one plane */
#define VELLUM_TOO_FEW_COLORS 17      /* too few colour table entries */
#define VELLUM_NOT_CALS 18            /* the file has no valid CALS header */
#define VELLUM_EOFB_MISSING 19        /* Group 4 data without an end-of-facsimile-block code */
#define VELLUM_EOFB_UNEXPECTED 20     /* Group 4 data with an end-of-facsimile-block code before the last line */

/* Open modes of OpenTiffFile and OpenTiffInMemory. Every other value counts as T_CREAT. */
#define T_READ 0   /* an existing TIFF, for reading */
#define T_CREAT 1  /* a new TIFF; nothing is read or written by the open call */
#define T_APPEND 2 /* an existing TIFF that images are to be added to; a missing file counts as a new one */

/* Byte orders. */
#define VELLUM_BYTE_ORDER_II 0x4949 /* least significant byte first ("Intel") */
#define VELLUM_BYTE_ORDER_MM 0x4D4D /* most significant byte first ("Motorola") */

/* NumberOfTiffImages: count all images, whatever their kind. */
#define VELLUM_ALL_IMAGES 0x8000

/* Compression keys of the raw decoders and encoders: the TIFF Compression value in the low word, its option in the high
 * word. */
#define VELLUM_KEY_NONE 0x00001UL             /* uncompressed */
#define VELLUM_KEY_MODIFIED_HUFFMAN 0x40002UL /* T.4 runs, every line starts on a byte; 2 means the same */
#define VELLUM_KEY_GROUP3_1D 0x00003UL        /* T.4 one-dimensional */
#define VELLUM_KEY_GROUP3_1D_FILL 0x40003UL   /* ... with fill bits before EOL */
#define VELLUM_KEY_GROUP3_2D 0x10003UL        /* T.4 two-dimensional */
#define VELLUM_KEY_GROUP3_2D_FILL 0x50003UL   /* ... with fill bits before EOL */
#define VELLUM_KEY_GROUP4 0x00004UL           /* T.6 */
#define VELLUM_KEY_LZW 0x10005UL              /* LZW */
#define VELLUM_KEY_LZW_DIFFERENCING 0x20005UL /* LZW with horizontal differencing (Predictor 2) */
#define VELLUM_KEY_JPEG 0x00006UL             /* JPEG, by the companion module */
#define VELLUM_KEY_PACKBITS 0x08005UL         /* PackBits (32773) */

/* ---------------------------------------------------------------- types ------------------------------------------- */

/* An open TIFF: a movable global block that belongs to the library from the open call to CloseTiffFile. */
typedef HGLOBAL TiffHandle;

/*
 * A byte stream: above 0 a file handle (HFILE) of the operating system, -2 to -30 a memory stream of the library.
 */
typedef LONG StreamHandle;

/*
 * The function that receives the lines of an image from a decoder, one call a line, top line first; or, when encoding,
 * supplies them.
 *   line       the line's bytes, valid (and writable) during the call only
 *   lineIndex  the line's number in the image, from 0 at the top
 *   userValue  the value given to the decode call, unchanged
 * Result: 0 to go on; 3 to stop with success; any other number stops at once and becomes the error of the run.
 *
 * Bilevel lines of the CCITT decoders hold one bit a pixel, most significant bit first, 1 for black and 0 for white
 * whatever PhotometricInterpretation says. Lines of the other decoders hold the image's samples as stored.
 */
typedef DWORD(VELLUMAPI *LineFunc)(BYTE *line, DWORD lineIndex, DWORD userValue);

#pragma pack(push, 1)

/* What GetTiffFileInfo tells of an open TIFF. */
typedef struct TiffFileInfo {
    char path[150];             /* NUL-terminated; empty for a TIFF in memory */
    WORD byteOrder;             /* VELLUM_BYTE_ORDER_II or VELLUM_BYTE_ORDER_MM */
    DWORD imageCount;           /* number of images */
    DWORD firstDirectoryOffset; /* offset of image 0's directory from the start of the file */
} TiffFileInfo;

/* What the headers of an IOCA image segment tell (ReadIOCAHeader), and what the writers put into one. */
typedef struct IocaHeader {
    DWORD segmentName;         /* the Begin Segment name, first byte on top; 0 when there is none or it is too long */
    WORD contentParameter;     /* first parameter byte of Begin Image Content */
    WORD horizontalResolution; /* dots per ten inches */
    WORD verticalResolution;   /* likewise */
    WORD width;                /* pixels */
    WORD height;               /* pixels */
    WORD compression;          /* compression identifier of the Image Encoding Parameter; 1 is MMR */
    WORD firstBlockLength;     /* bytes of the first data block */
    DWORD firstBlockPosition;  /* where the first data block's FE lies in the file; 0 when there is none */
} IocaHeader;

/*
 * A fax page and the text that it is to be filled with (CreateFaxPageFromASCII, BitmapFormOverlay). Lengths are counted
 * in millimetres, or with VELLUM_FAX_HUNDREDTHS in hundredths of an inch; on the page they become pixels, fractions
 * dropped, first of a hundredth of an inch and then of a pixel. Path and face may do without their terminators.
 */
typedef struct FaxPageParams {
    char textFile[256];         /* path of the text */
    DWORD pageWidth;            /* length */
    DWORD pageHeight;           /* length */
    DWORD leftMargin;           /* length, on the right too */
    DWORD topMargin;            /* length, at the bottom too */
    char fontFace[128];         /* name of a font, of which 31 characters count; empty: the system's own font */
    DWORD fontSize;             /* points; letters far larger than the page are made smaller */
    DWORD horizontalResolution; /* dots per inch */
    DWORD verticalResolution;   /* dots per inch */
    DWORD lineSpacing;          /* length, between lines, added to the font's height */
    DWORD tabStops[16];         /* lengths from the left margin */
    DWORD flags;                /* VELLUM_FAX_HUNDREDTHS, _ITALIC, _BOLD */
    /* NULL, or the font to use instead of fontFace, italic and bold, all but its height, and with its width bounded
       likewise; only looked at when fontFace is not empty */
    const LOGFONTA *fontDescription;
} FaxPageParams;

/* The numbers of a CALS header (ReadCALSInfo, DefineCALSHead), by their records. */
typedef struct CalsInfo {
    LONG rtype;      /* raster type; 1 in every file that is read or written */
    LONG rorient[2]; /* two angles in degrees: the pel path, and the line progression counted from it */
    LONG rpelcnt[2]; /* pixels in a line, and lines */
    LONG rdensty;    /* dots per inch in both directions */
} CalsInfo;

/*
 * The texts of a CALS header, by their records. When defined, each ends with a NUL, and NULL stands for "NONE"; when
 * read (ReadCALSNote), only the last one does, and NULL stands for a text that is not there.
 */
typedef struct CalsNotes {
    const char *srcdocid;  /* "srcdocid: ", the document in the source system */
    const char *dstdocis;  /* "dstdocis: ", the document in the destination system */
    const char *txtfileid; /* "txtfileid: ", the text file */
    const char *figid;     /* "figid: ", the figure */
    const char *scrgph;    /* "scrgph: ", the graphics file in the source system */
    const char *doccls;    /* "doccls: ", the security classification */
    const char *notes;     /* "notes: ", anything else */
} CalsNotes;

/*
 * A note: some lines of text with a place on an image. It belongs to the caller, and so do its blocks, except where a
 * function's text says that it frees one.
 */
typedef struct NoteRecord {
    LONG inHeader; /* not 0: the note is kept as a text, in a tag; 0: it is, or is to be, part of the pixels. The dialog
                      begins with it, so set it to 1 for a note without an image */
    LONG opaque;   /* not 0: its background is filled */
    HGLOBAL text;  /* movable block: the text, lines separated by CR LF, with a NUL; NULL when there is no note. With a
                      line feed alone the text is measured as one line, and burning cuts the other lines off */
    LONG left;     /* its rectangle in pixels of the image; right and bottom lie outside */
    LONG top;
    LONG right;
    LONG bottom;
    HGLOBAL image; /* packed DIB, or NULL: the image that a note is placed on, and burned into; the latter takes
                      uncompressed, bottom-up ones without colour masks */
} NoteRecord;

#pragma pack(pop)

/*
 * The state of one decoding or encoding run, as the codecs see it. A codec (the companion JPEG module is one) gets a
 * pointer to it, moves bytes with the six buffer operations below, and returns an error number. The layout is fixed.
 */
typedef struct CodecState {
    BYTE *codePointer;       /* next byte to read from, or to write into, the code buffer */
    BYTE *linePointer;       /* next byte of the line buffer */
    DWORD codeBytesLeft;     /* decoding: unread bytes in the code buffer; encoding: free bytes (at most 65535) */
    LONG lineBytesLeft;      /* bytes of the current line that are still to come */
    DWORD pixelsLeft;        /* pixels of the current line that are still to come */
    DWORD userValue;         /* handed to every call of the line function */
    DWORD stripEnd;          /* decoding: 1 when the line just delivered closed its strip; encoding: 1 while the
                                current line is the last of its strip */
    BITMAPINFOHEADER image;  /* width and height in pixels, bits per pixel, resolution; biHeight is the number of
                                lines, or the last line + 1 when only a range is decoded */
    LONG bytesPerLine;       /* (biWidth * biBitCount + 7) / 8 */
    DWORD compressionKey;    /* VELLUM_KEY_... */
    DWORD currentLine;       /* index of the next line to deliver or to fetch */
    HGLOBAL bufferBlock;     /* the block that holds the line buffer and, behind it, the code buffer */
    StreamHandle stream;     /* where the code comes from or goes to */
    DWORD fillOrder;         /* 1: most significant bit first; 2: the bits of every code byte are reversed */
    DWORD byteOrder;         /* VELLUM_BYTE_ORDER_II or VELLUM_BYTE_ORDER_MM, of the file's numbers */
    BYTE *codeBuffer;        /* start of the code buffer */
    DWORD bufferBase;        /* decoding: stream position of the code buffer's first byte; encoding: free bytes at
                                the last reset */
    LONG codeCapacity;       /* size of the code buffer in bytes */
    DWORD streamLimit;       /* decoding: readable bytes of the stream; encoding: position of the current strip */
    DWORD stripIndex;        /* current strip */
    DWORD streamPosition;    /* decoding: position of the next read; encoding: bytes of the strip already written */
    DWORD stripCount;        /* strips in the image */
    DWORD rowsPerStrip;      /* lines in every strip but the last */
    DWORD stripLastLine;     /* index of the current strip's last line */
    HGLOBAL stripOffsets;    /* StripOffsets, one number a strip; NULL for a raw stream */
    DWORD offsetsType;       /* 3: stripOffsets holds 16-bit numbers; otherwise 32-bit numbers */
    HGLOBAL stripByteCounts; /* StripByteCounts, 32-bit numbers (written when encoding) */
    LineFunc lineFunction;   /* receives or supplies the lines */
    BYTE *lineBuffer;        /* start of the line buffer */
    DWORD lineBufferSize;    /* bytesPerLine + 256: a codec may run past a line's end by up to 256 bytes */
    WORD jpegProcess;        /* compression 6: JPEGProc */
    WORD reserved;           /* 0 */
    HGLOBAL workBlocks[4];   /* blocks of the codec, freed with the buffers. Compression 6: JPEGQTables, JPEGACTables,
                                JPEGDCTables and ReferenceBlackWhite, as the file has them */
} CodecState;

/*
 * Compression 6: what the companion module finds behind the CodecState it is handed, in the same piece of memory.
 */
typedef struct JpegCodecState {
    CodecState codec;
    DWORD tileWidth;             /* 0 when the image has no tiles */
    DWORD tileLength;            /* likewise */
    DWORD tilesAcross;           /* at least 1 */
    DWORD tilesDown;             /* at least 1; codec.stripCount is the product */
    DWORD planarConfiguration;   /* PlanarConfiguration */
    DWORD restartInterval;       /* JPEGRestartInterval, 0 when absent */
    DWORD subsamplingHorizontal; /* YCbCrSubSampling, for more than 8 bits per pixel; 0 otherwise */
    DWORD subsamplingVertical;
} JpegCodecState;

/*
 * What the loaders' line functions (DllFlushTiffLine...) work on. A program that hands one of them to DecodeTiffImage
 * itself fills the record and passes its address as the user value.
 */
typedef struct LoadLineContext {
    HDC dc;              /* bitmap callbacks: a screen device context */
    HBITMAP bitmap;      /* bitmap callbacks: the bitmap to fill */
    HGLOBAL hInfo;       /* the BITMAPINFOHEADER and colour table (for the DIB callbacks: the whole packed DIB) */
    BYTE *bits;          /* DIB callbacks: first byte of the locked DIB's rows */
    DWORD height;        /* DIB callbacks: rows of the DIB */
    DWORD lineBytes;     /* bytes of one decoded line to use */
    DWORD strideOrUsage; /* DIB callbacks: bytes from row to row; bitmap callbacks: DIB_RGB_COLORS */
} LoadLineContext;

/* What the information dialog (TiffDllInfoDlgFn) is about. */
typedef struct TiffInfoDlgParam {
    TiffHandle tiff; /* an open TIFF */
    DWORD index;     /* of an image that is registered (GetTiffImage) */
} TiffInfoDlgParam;

/*
 * What the screen line functions (Flush...LineToScreen) work on; the painter of DecompressTiffToScreen fills it. Where
 * the lines land (the part of the picture that the window shows, the scale, the memory device context) is the
 * library's own and known only while a picture is being painted.
 */
typedef struct ScreenLineContext {
    HDC dc;                /* the device context that is painted on */
    HBITMAP bitmap;        /* where lines wait: rows of the picture; turned by 90 or 270 degrees, columns */
    HGLOBAL hInfo;         /* the BITMAPINFOHEADER and colour table */
    DWORD reserved;        /* not used */
    DWORD pixelCount;      /* pixels of a line of the image */
    DWORD bitmapBytes;     /* bytes of a row of the bitmap */
    DWORD colorUsage;      /* DIB_PAL_COLORS for 4 and 8 bits per pixel that have a palette, else DIB_RGB_COLORS */
    BITMAPINFO *header;    /* hInfo, locked; its size is that of the bitmap */
    DWORD rasterOperation; /* SRCCOPY or NOTSRCCOPY */
    BYTE *workBuffer;      /* for lines that become columns */
} ScreenLineContext;

/*
 * What the savers' fill functions (DllFill...) work on. A program that hands one of them to EncodeTiffImage itself
 * fills the record and passes its address as the user value.
 */
typedef struct SaveLineContext {
    HDC dc;                 /* bitmap callbacks: a screen device context */
    HBITMAP bitmap;         /* bitmap callbacks: the bitmap to read */
    DWORD reserved;         /* not used */
    BITMAPINFO *bitmapInfo; /* bitmap callbacks: header and colour table that GetDIBits works with */
    BYTE *bits;             /* DIB callbacks: first byte of the locked DIB's rows */
    DWORD height;           /* DIB callbacks: rows of the DIB */
    DWORD rowBytes;         /* DIB callbacks: bytes to copy for a line */
    DWORD strideOrUsage;    /* DIB callbacks: bytes from row to row; bitmap callbacks: DIB_RGB_COLORS */
    DWORD invert;           /* DllFillTiffLineDIBforGamma: non-zero complements every byte */
} SaveLineContext;

/* What DllFillCcittLine works on. */
typedef struct CcittLineContext {
    HDC dc;         /* a screen device context */
    HBITMAP bitmap; /* the bitmap to read */
} CcittLineContext;

/*
 * What the line functions of the CALS calls work on, DllFlushCALSLineDIB and DllFillCALSLineDIB. A program that hands
 * one of them to a decode or encode call itself fills the record and passes its address as the user value.
 */
typedef struct CalsLineContext {
    BYTE *bits;      /* first byte of the locked DIB's rows */
    DWORD height;    /* rows of the DIB */
    DWORD lineBytes; /* bytes of one coded line: (width + 7) / 8 */
    DWORD stride;    /* bytes from row to row */
    DWORD invert;    /* DllFillCALSLineDIB: non-zero complements every byte */
} CalsLineContext;

/* ---------------------------------------------------------------- open files and errors --------------------------- */

/*
 * Opens a TIFF file.
 *   path  at most 149 characters
 *   mode  T_READ, T_APPEND: the header and the chain of directories are read; T_CREAT: nothing is touched
 * Result: a handle for CloseTiffFile, or NULL. The error number is cleared first. A chain that breaks behind a readable
 * image gives a handle on the images before the break, with error 6 pending. At most 1000 images are taken.
 * Errors: 1, 6 (not readable, or no complete first directory), 7, 8, 14. The file is not kept open.
 */
TiffHandle VELLUMAPI OpenTiffFile(const char *path, DWORD mode);

/*
 * Opens a TIFF held in memory.
 *   memory  a movable block that stays the caller's and must outlive the handle. While it is being written to, the
 *           library may move it: GetMemoryTiffHandle tells where it is.
 *   size    the TIFF's bytes in it
 *   mode    as for OpenTiffFile
 * Result and errors as for OpenTiffFile. Only one memory TIFF is read or written at a time.
 */
TiffHandle VELLUMAPI OpenTiffInMemory(HGLOBAL memory, DWORD size, DWORD mode);

/*
 * Closes a TIFF, drops its images and unloads the companion JPEG module. The block of a memory TIFF stays the caller's.
 * Result: 1, or 0 when the handle is not one.
 */
DWORD VELLUMAPI CloseTiffFile(TiffHandle tiff);

/*
 * Frees the tags of an image that GetTiffImage loaded.
 * Result: 1 when they were freed. When the image was not registered: 1 if no error is pending, else 0.
 * Errors: 3 for an index above 999.
 */
DWORD VELLUMAPI DropTiffImage(TiffHandle tiff, DWORD index);

/*
 * Result: 1 when the image's tags are in memory (GetTiffImage, and DropTiffImage not yet), else 0.
 * Errors: 3 for an index outside 0 to 999, whatever the number of images.
 */
DWORD VELLUMAPI IsTiffImageRegistered(TiffHandle tiff, LONG index);

/*
 * Counts images.
 *   subfileType  VELLUM_ALL_IMAGES for all of them. Any other value counts the entries of the table of 1000 images
 *                whose flags are exactly this value: 0 full-resolution images (with all unused entries), 1 reduced
 *                resolution, 2 page of several; plus 0x4000 for registered images.
 */
LONG VELLUMAPI NumberOfTiffImages(TiffHandle tiff, DWORD subfileType);

/* Result: the number of images in a file, or 0xFFFFFFFF when it cannot be opened. Errors: as OpenTiffFile. */
DWORD VELLUMAPI GetNumberOfImagesInTiffFile(const char *path);

/* Fills *info. Result: always 1. */
DWORD VELLUMAPI GetTiffFileInfo(TiffHandle tiff, TiffFileInfo *info);

/*
 * Changes the path or the byte order that an open TIFF goes by.
 *   path       the new path, or NULL to keep it
 *   byteOrder  VELLUM_BYTE_ORDER_II or _MM, or 0 to keep it
 * Result: 1 or 0. Errors: 7 for a path of more than 149 characters (the path is then kept), 14.
 */
LONG VELLUMAPI ModiTiffFileInfo(TiffHandle tiff, const char *path, LONG byteOrder);

/* Result: the block that holds a memory TIFF now; NULL for a file. It stays the caller's. */
HGLOBAL VELLUMAPI GetMemoryTiffHandle(TiffHandle tiff);

/* Asks the system for room for this many open files. Result: how many there is room for. */
DWORD VELLUMAPI SetTiffDllFileHandle(DWORD count);

/* Result: the number of the last error. */
DWORD VELLUMAPI TiffError(void);

/* Sets the error number, if it is below 22. Result: the number before. */
DWORD VELLUMAPI SetTiffError(DWORD code);

/*
 * Gives the English message of an error.
 *   buffer  room for 43 bytes, or NULL to show the message in a message box
 *   code    0 to 21; any other value means the current error
 * Result: buffer.
 */
char *VELLUMAPI TiffErrorString(char *buffer, DWORD code);

/*
 * Writes the text "Version 7.00" with its terminator; a length below 13 gives that many characters and no terminator,
 * one of 0 or less nothing.
 */
void VELLUMAPI GetTiffVersion(char *buffer, LONG length);

/* ---------------------------------------------------------------- streams ----------------------------------------- */

/*
 * Read count bytes. Result: the bytes read, or -1. A memory stream always delivers the full count; what lies outside
 * its block reads as zeros.
 */
LONG VELLUMAPI mRead(StreamHandle stream, BYTE *buffer, LONG count);

/*
 * Writes count bytes. Result: the bytes written, or -1. A memory stream grows by just what is needed. Its block may
 * then lie elsewhere, so it cannot grow while the caller holds it locked; a stream that could not grow has no block any
 * more.
 */
LONG VELLUMAPI mWrite(StreamHandle stream, const BYTE *buffer, DWORD count);

/*
 * Moves the position.
 *   origin  0 from the start, 1 from the current position, 2 from the end. From the end of a memory stream the offset
 *           counts backwards: mSeek(s, 10, 2) is 10 bytes before its end. A file takes it as _llseek does.
 * Result: the new position, or -1. In a memory stream origins 0 and 1 go no further than its end, and origin 2 not
 * before its start: mSeek(s, -10, 2) is 10 bytes behind the end. Any other origin leaves the position as it is.
 */
LONG VELLUMAPI mSeek(StreamHandle stream, LONG offset, LONG origin);

/* Result: the position, or -1. */
LONG VELLUMAPI mTell(StreamHandle stream);

/* Result: the size in bytes, or -1. */
LONG VELLUMAPI mSize(StreamHandle stream);

/*
 * Closes a stream. Result: 0, or -1 for a file that cannot be closed and for handle 0. A handle below -30 comes back as
 * it is. The block of a memory stream stays the caller's.
 */
LONG VELLUMAPI mClose(StreamHandle stream);

/*
 * Reads values of a TIFF field type and converts them to the machine's byte order.
 *   type       TIFF field type: 3 SHORT (2 bytes), 4 LONG and 9 SLONG (4), 5 RATIONAL (two LONGs), all others 1 byte
 *   count      number of values; 0 succeeds
 *   byteOrder  VELLUM_BYTE_ORDER_MM swaps; everything else does not
 *   fillOrder  2 reverses the bits of every byte
 * Result: 1, or 0 with error 6 when the stream ends early.
 */
DWORD VELLUMAPI LongRead(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder);

/* Writes values; the counterpart of LongRead. The buffer is unchanged unless memory for a copy is lacking. */
DWORD VELLUMAPI LongWrite(StreamHandle stream, LONG type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder);

/* ---------------------------------------------------------------- image queries ----------------------------------- */

/*
 * Loads an image's tags; the other queries need it. An image that is registered already is left alone.
 * Result: 1 or 0. Errors: 1, 3, 6. A 3 that is still pending from an earlier call makes the call fail too.
 */
DWORD VELLUMAPI GetTiffImage(TiffHandle tiff, DWORD index);

/*
 * Gets the first value of a tag.
 *   value  by the tag's type: BYTE 1 byte, SHORT a DWORD, LONG a DWORD, RATIONAL two DWORDs (numerator, denominator);
 *          for any other type nothing is written. NULL just asks whether the tag is there.
 * Result: 1 when the image is registered and has the tag, else 0. Errors: 3, 13.
 */
LONG VELLUMAPI GetTiffImageInfo(TiffHandle tiff, DWORD index, LONG tag, void *value);

/*
 * Gets all values of a tag, in the machine's byte order.
 *   tag    0 for the list of the image's tag numbers (type LONG)
 *   data   receives a new block that the caller frees; or NULL
 *   type   receives the TIFF field type; or NULL
 *   count  receives the number of values; or NULL
 * Result: 1 or 0. Errors: 1, 3, 13.
 */
LONG VELLUMAPI GetTiffImageInfoBuffer(TiffHandle tiff, DWORD index, LONG tag, HGLOBAL *data, DWORD *type, DWORD *count);

/*
 * Describes an image as a bottom-up Windows bitmap of 1, 4, 8 or 24 bits per pixel.
 * Result: 0, or the error number: 10 (no ImageWidth or ImageLength), 16.
 */
DWORD VELLUMAPI GetTiffDimensions(TiffHandle tiff, DWORD index, BITMAPINFOHEADER *header);

/*
 * Makes an image's BITMAPINFOHEADER and colour table.
 * Result: a block that the caller frees, or NULL. Errors: 1, 10 (also: a palette image without a ColorMap), 16.
 */
HGLOBAL VELLUMAPI GetTiffRGBQuad(TiffHandle tiff, DWORD index);

/* Result: a logical palette of an image's colours, to be deleted by the caller; NULL on failure and for 1-bit images.
 */
HPALETTE VELLUMAPI GetTiffImagePalette(const char *path, DWORD index);

/* Result: lines in a strip, at most the image length; 0 when the image has no length. */
DWORD VELLUMAPI GetTiffRowsPerStrip(TiffHandle tiff, DWORD index);

/* Result: the number of strips; 0 when the image has no StripOffsets. */
LONG VELLUMAPI GetTiffStripCount(TiffHandle tiff, DWORD index);

/*
 * Gets the resolution in dots per inch: vertical in the high word, horizontal in the low word, 0 when the image's unit
 * is none of 1, 2 and 3. An image without resolution tags has the screen's. Result: always 0.
 */
DWORD VELLUMAPI GetTiffImageDPI(TiffHandle tiff, DWORD index, DWORD *dpi);

/* ---------------------------------------------------------------- codec buffers ----------------------------------- */

/*
 * The buffer operations, for codecs. Each returns an error number: 0; 1; 3 when the last line has passed (a codec then
 * returns 0); 5 at the end of the stream; 6; or what the line function returned.
 */

/* Allocates a decoder's buffers and moves to the first strip. */
DWORD VELLUMAPI InitDecodeBuffers(CodecState *state);

/* Allocates an encoder's buffers, notes where the first strip begins and fetches the first line. */
DWORD VELLUMAPI InitEncodeBuffers(CodecState *state);

/* Reads the next code bytes. */
DWORD VELLUMAPI FillCodeBuffer(CodecState *state);

/* Writes the code buffer's used part. */
DWORD VELLUMAPI FlushCodeBuffer(CodecState *state);

/* Closes the strip if the line before ended one, then fetches the next line. */
DWORD VELLUMAPI FillDataBuffer(CodecState *state);

/* Delivers the line and moves to the next strip if it closed one. */
DWORD VELLUMAPI FlushDataBuffer(CodecState *state);

/* ---------------------------------------------------------------- decoding ---------------------------------------- */

/*
 * Decodes a registered image, or some of its lines.
 *   firstStrip    strip to start at; 0 for the whole image
 *   lineCount     lines to deliver from there; 0 for all
 *   userValue     handed to lineFunction
 *   lineFunction  receives the lines
 * Result: 1 or 0; the error number is set either way, to 0 on success.
 * Errors: 3 (not registered, or no such strip), 5, 6, 10, 11, 12, 15, 16, 20, or what lineFunction returned.
 * For compression 6 the companion module DCTLIB32.DLL is loaded; without it a message box is shown, no line delivered
 * and success reported.
 */
DWORD VELLUMAPI DecodeTiffImage(TiffHandle tiff, DWORD index, DWORD firstStrip, DWORD lineCount, DWORD userValue,
                                LineFunc lineFunction);

/*
 * Decodes a headerless code stream from its current position, most significant bit first.
 *   compressionKey  VELLUM_KEY_...
 * Result and errors as for DecodeTiffImage. The stream stays open.
 */
DWORD VELLUMAPI DecodeCcittImage(StreamHandle stream, DWORD width, DWORD height, DWORD compressionKey, DWORD userValue,
                                 LineFunc lineFunction);

/*
 * As DecodeCcittImage, from an offset and in either bit order.
 *   offset     where the code starts; 0, or an offset outside the stream, means the current position
 *   fillOrder  1 or 2; anything else counts as 1
 *   byteOrder  VELLUM_BYTE_ORDER_II or _MM; anything else counts as II
 */
DWORD VELLUMAPI DecodeCcittImageFrom(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD compressionKey,
                                     DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction);

/*
 * Decodes a stream of MMR blocks, each with the header FE 92 and a 16-bit length (most significant byte first; 0 means
 * 65520), from a file (not from memory). The fifth argument is reserved.
 */
DWORD VELLUMAPI DecodeMMRImage(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD reserved,
                               DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction);

/* ---------------------------------------------------------------- loading ----------------------------------------- */

/*
 * Loads an image into a packed DIB (header, colour table, bottom-up rows padded to 32 bits).
 *   showInfo  non-zero shows the information dialog first (see TiffDllInfoDlgFn), so that the user can give up; it is
 *             modal and has no owner
 * Result: a block that the caller frees, or NULL. An image whose data end early comes back as far as it goes, its other
 * lines zero, with error 5, 19 or 20 pending; on full success the error is 0. NULL with error 0 when the user
 * cancelled. Errors: those of OpenTiffFile, GetTiffImage, GetTiffRGBQuad and DecodeTiffImage; 1 when the dialog cannot
 * be shown.
 */
HGLOBAL VELLUMAPI LoadTiffIntoDIB(const char *path, DWORD index, LONG showInfo);

/*
 * Loads an image into a bitmap: a monochrome one of an image of 1 bit per pixel, else one of the screen's depth.
 *   showInfo  that of LoadTiffIntoDIB
 * Result: a bitmap that the caller deletes, or NULL. An image whose data end early (5) comes back as far as it goes;
 * what its other lines hold is not defined. Errors: as LoadTiffIntoDIB, 19 and 20 without a bitmap.
 */
HBITMAP VELLUMAPI LoadTiffIntoBitmap(const char *path, DWORD index, LONG showInfo);

/* As LoadTiffIntoBitmap, of an open file whose image is registered. A null handle leaves the error as it was. */
HBITMAP VELLUMAPI LoadTiffChainIntoBitmap(TiffHandle tiff, DWORD index);

/*
 * Puts an image onto the clipboard as a bitmap.
 *   showInfo  that of LoadTiffIntoDIB; when the user cancels the clipboard stays as it is
 * Result: 1; also 1 when the file cannot be opened or the image not be registered (ask TiffError); 0 otherwise. When
 * another program has the clipboard open, the error stays what loading left, as a rule 0. An image whose data end early
 * is put there as far as it goes, with error 5 pending.
 */
DWORD VELLUMAPI LoadTiffFileIntoClipboard(const char *path, DWORD index, LONG showInfo);

/*
 * The loaders' line functions: into a device-dependent bitmap (...Line, and ...Line24 for 24 bits per pixel) or into a
 * packed DIB (...LineDIB, ...Line24DIB). Those for 24 bits exchange red and blue in the line they are given.
 * Result: 0. They are handed to DecodeTiffImage cast to LineFunc, with the record's address as the user value.
 */
DWORD VELLUMAPI DllFlushTiffLine(BYTE *line, DWORD row, LoadLineContext *context);
DWORD VELLUMAPI DllFlushTiffLine24(BYTE *line, DWORD row, LoadLineContext *context);
DWORD VELLUMAPI DllFlushTiffLineDIB(BYTE *line, DWORD row, LoadLineContext *context);
DWORD VELLUMAPI DllFlushTiffLine24DIB(BYTE *line, DWORD row, LoadLineContext *context);

/*
 * The dialog procedure of the information dialog, template "TIFFINFO" in the library's resources: title, artist, date,
 * size, colours and compression of an image. WM_INITDIALOG's lParam points to a TiffInfoDlgParam; without one the
 * template's texts stay. The dialog ends with 1 for Load and 2 for Cancel:
 *     DialogBoxParam(GetModuleHandle("VELLUM32.DLL"), "TIFFINFO", owner, TiffDllInfoDlgFn, (LPARAM)&param)
 * The loaders show it without an owner: a program whose window is not to be used meanwhile disables it around the call.
 *
 * A template of a program's own may leave controls out. They are 200 width, 201 height, 202 planes, 203 bits, 204
 * colours, 205 title, 206 artist, 207 date, 208 compression, 209 its option, 210 strips, and, which TIFFINFO has not,
 * 211 and 212 for the horizontal and vertical dots per inch.
 */
INT_PTR VELLUMAPI TiffDllInfoDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/* ---------------------------------------------------------------- painting on the screen -------------------------- */

/* What DecompressToScreen is to take a file for. */
#define VELLUM_SHOW_ANY 0  /* what it begins with tells */
#define VELLUM_SHOW_TIFF 1 /* TIFF */
#define VELLUM_SHOW_CALS 2 /* CALS Type 1 */

/* How a picture is painted: one rotation, one size, inverted or not. */
#define VELLUM_ROTATE_0 0x0
#define VELLUM_ROTATE_90 0x1          /* clockwise: the first line becomes the rightmost column, top to bottom */
#define VELLUM_ROTATE_180 0x2         /* the first line becomes the bottom row, right to left */
#define VELLUM_ROTATE_270 0x3         /* clockwise: the first line becomes the leftmost column, bottom to top */
#define VELLUM_SHOW_BY_RESOLUTION 0x4 /* at its true size on the screen, times the ratios; else a pixel for a pixel */
#define VELLUM_SHOW_FIT 0x8       /* the whole picture, as large as the client area lets it; the former is ignored */
#define VELLUM_SHOW_INVERTED 0x20 /* exchanges SRCCOPY and NOTSRCCOPY */

/*
 * Paints an image of a TIFF file on a window while it is being decoded, line by line, without making a bitmap of it.
 *   window  its client area is what there is room for; its scroll bars say which part of a larger picture is wanted.
 *           NULL: the device context's pixels from its own upper left corner to the right and bottom of its clip box
 *           are what there is room for; nothing is filled or validated then.
 *   dc      the window's device context, or any other that the picture is to be painted on
 *   ratios  NULL, or four numbers: numerator and denominator that the horizontal scale of VELLUM_SHOW_BY_RESOLUTION
 *           is multiplied by, and those of the vertical scale. A pair with a zero counts for nothing.
 *   flags   VELLUM_ROTATE_..., VELLUM_SHOW_...; without one of size a pixel of the picture is one of the screen
 * Result: 1, or 0 for an empty path, no device context, or an error.
 * Errors: those of OpenTiffFile, GetTiffImage, GetTiffRGBQuad and DecodeTiffImage; 1 also for a picture of more than
 * 16 MB that its file cannot fill; 16 for another number of bits per pixel than 1, 4, 8 and 24, which a message box
 * tells, too.
 *
 * By resolution, every direction of the picture has a scale of its own, so that a fax of 204 x 98 dots per inch has
 * its true proportions: device dots per inch (LOGPIXELSX, LOGPIXELSY) over the image's, which are those of
 * GetTiffDimensions (dots per centimetre count as dots per metre there: they need ratios of 1 to 100).
 * Fitted, the pixels are square: the picture keeps the proportions of its numbers of pixels. The room for a picture
 * that is turned by 90 or 270 degrees is then the client area with width and height exchanged, so that a part of it
 * may be cut off.
 *
 * Scroll bars: a bar is shown where the picture is larger than the client area, else hidden and set to 0; fitting
 * hides both. The part that is shown begins at position x (picture - client area) / range of its bar, in pixels of
 * the screen; a range of 0 stands for the beginning. The program gives its bars a range (SetScrollRange) and no page
 * (nPage), so that the position can reach the range's end, and answers WM_HSCROLL and WM_VSCROLL by SetScrollPos and
 * InvalidateRect. What a bar that goes away uncovers lies outside the clip region of BeginPaint, and what the program
 * invalidates in the WM_SIZE that comes of it is validated again: compare the client area before and after the call,
 * and invalidate the window after EndPaint when it changed, as examples/viewer/view.c does.
 *
 * Afterwards the rest of the client area is filled with the brush of the window's class, and the whole window is
 * validated, also when the image's data were damaged or ended early: what was decoded stays on the screen. After
 * errors that come before (the file, the image, its colours, memory) the window is neither filled nor validated:
 * paint between BeginPaint and EndPaint, or validate it yourself.
 *
 * The device context keeps the mapping in which a unit is a pixel of the (turned) picture and the origin is the upper
 * left corner of the part that is shown, and the stretching mode; the clipping, the palette and the objects that were
 * selected into it are given back. A world transform is not applied to the picture. A bilevel picture has the device
 * context's text and background colours, as every monochrome bitmap (black and white unless they were set).
 *
 * From WM_SIZE another picture may be painted. A message box runs a message loop, in which no second one comes up. A
 * window without a client area and a scale that makes nothing of the picture are successes without a mark.
 */
LONG VELLUMAPI DecompressTiffToScreen(HWND window, HDC dc, const char *path, DWORD index, const DWORD *ratios,
                                      DWORD flags);

/*
 * The same for a file of any format that can be painted.
 *   kind    VELLUM_SHOW_...; any other gives 0 and leaves the error as it was
 *   index   of the image, for TIFF
 *   ratios  for CALS files numbers above 0x7FFFFFFF count for nothing
 * Result: as of DecompressTiffToScreen; 0 for a file that is none of them, too: the error is then that of ReadCALSHead
 * (18, or 6 for a file that cannot be opened).
 */
DWORD VELLUMAPI DecompressToScreen(LONG kind, HWND window, HDC dc, const char *path, DWORD index, const DWORD *ratios,
                                   DWORD flags);

/*
 * The line functions of the painter, by rotation (none, Rot: 90, Rot18: 180, Rot27: 270 degrees) and depth (Mono: 1
 * bit, RGB: 4 or 8 bits, RGB24: 24 bits per pixel). Lines outside the part that is shown, and all lines while no
 * picture is being painted, are left out. The painter shows the lines some at a time. Result: 0.
 */
DWORD VELLUMAPI FlushMonoLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushMonoRotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushMonoRot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushMonoRot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGBLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGBRotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGBRot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGBRot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGB24LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGB24RotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGB24Rot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushRGB24Rot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);

/* ---------------------------------------------------------------- image definition -------------------------------- */

/*
 * A new image is written so: OpenTiffFile (T_CREAT, or T_APPEND to add to an existing file), DefineTiffImage,
 * Compression (259) by DefineTiffImageInfo, DefineGeneralTags, any further tags (nobody else defines
 * PhotometricInterpretation and the resolution), EncodeTiffImage, DropTiffImage, CloseTiffFile. Nothing reaches the
 * file before EncodeTiffImage. One image for each time the file is opened: for the next page open it again with
 * T_APPEND. A second image encoded on the same handle takes the first one's place in the file.
 */

/*
 * Reserves a place for a new image, with an empty directory. The first image defined on a handle has the index 0
 * whatever the file holds already; its directory goes behind the last one of the file when it is written.
 * Result: the image's index, or -1. Errors: 1 (also when all 1000 places are taken).
 */
LONG VELLUMAPI DefineTiffImage(TiffHandle tiff);

/*
 * Defines a tag of a registered image, in place of any that it had. No tag number or type is refused.
 *   values  the values, in the machine's byte order
 *   type    TIFF field type: 3 SHORT (2 bytes), 4 LONG and 9 SLONG (4), 5 RATIONAL (two LONGs), all others 1 byte
 *   count   number of values
 * Result: 1 or 0. Errors: 1, 3.
 */
LONG VELLUMAPI DefineTiffImageInfoBuffer(TiffHandle tiff, DWORD index, DWORD tag, const void *values, DWORD type,
                                         DWORD count);

/* Defines a tag of one BYTE, SHORT or LONG value. Result and errors as for DefineTiffImageInfoBuffer. */
LONG VELLUMAPI DefineTiffImageInfo(TiffHandle tiff, DWORD index, DWORD tag, DWORD type, DWORD value);

/*
 * Defines the tags that every image needs: ImageWidth, ImageLength, BitsPerSample, RowsPerStrip and, for 24 bits per
 * pixel, SamplesPerPixel and PlanarConfiguration. Compression, when it is to be other than 1, is defined before:
 * with 2, 3 or 4 the image becomes one strip, with 6 (JPEG) one tile; otherwise strips have about 8 KB.
 *   bitmap  width, height, planes and bits per pixel count
 * Result: 0, or 1 (a tag could not be defined), 10 (no width), 16 (planes times bits is not 1, 4, 8, 16 or 24). The
 * result is not stored as the library's error. Width and height above 65535 are cut to 16 bits without an error: define
 * 256, 257 and 278 as LONG afterwards. 16 bits per pixel are described, but nothing encodes them.
 */
DWORD VELLUMAPI DefineGeneralTags(TiffHandle tiff, DWORD index, BITMAP bitmap);

/* ---------------------------------------------------------------- encoding ---------------------------------------- */

/*
 * Writes a defined image: its data, then its directory, which is linked to the end of the file's chain last of all, so
 * that a failure leaves the images that were there before.
 *   userValue     handed to lineFunction
 *   lineFunction  supplies the lines, top line first: the image's samples as they are to be stored (bilevel lines of
 *                 the CCITT encoders: 1 for black runs). It must fill (width * bits per pixel + 7) / 8 bytes and may
 *                 write 256 more. 0 goes on; 3 ends the image early with success: it then has the lines so far; any
 *                 other number stops at once and becomes the error.
 * The codec follows Compression (default 1) with T4Options (3) or Predictor (5, default 1), the bit order FillOrder,
 * the strips RowsPerStrip (absent: a strip for every line; 0: one strip). StripOffsets and StripByteCounts are defined
 * by the call. Only one image of a handle can be encoded at a time: while another is registered (image 1 for image 0,
 * image 0 for any other) the call fails with 3. So does a file that has 1000 images already.
 * Compression 6 loads the companion module DCTLIB32.DLL; without it a message box is shown, nothing is written and
 * success reported.
 * Result: 1 or 0; the error number is set either way, to 0 on success.
 * Errors: 1, 3, 6, 10, 11, 12 (CCITT lines of more than 4160 bytes), 14, 15, 16, or what lineFunction returned.
 */
DWORD VELLUMAPI EncodeTiffImage(TiffHandle tiff, DWORD index, DWORD userValue, LineFunc lineFunction);

/*
 * Writes the directory of a defined image whose data are in the file already, at the file's end.
 * Result: 0, or the error number: 1, 6.
 */
DWORD VELLUMAPI WriteTiffImageDirectory(TiffHandle tiff, DWORD index);

/*
 * Encodes a bilevel image as a headerless code stream at a stream's current position, most significant bit first.
 *   compressionKey  VELLUM_KEY_...
 * Result and errors as for EncodeTiffImage. The stream stays open.
 */
DWORD VELLUMAPI EncodeCcittImage(StreamHandle stream, DWORD width, DWORD height, DWORD compressionKey, DWORD userValue,
                                 LineFunc lineFunction);

/*
 * As EncodeCcittImage, in either bit order.
 *   fillOrder  1 or 2; anything else counts as 1
 *   byteOrder  VELLUM_BYTE_ORDER_II or _MM; anything else counts as II
 */
DWORD VELLUMAPI EncodeCcittImageTo(StreamHandle stream, DWORD width, DWORD height, DWORD fillOrder, DWORD byteOrder,
                                   DWORD compressionKey, DWORD userValue, LineFunc lineFunction);

/* Encodes a bilevel image as a stream of MMR blocks, as DecodeMMRImage reads them. The fourth argument is reserved. */
DWORD VELLUMAPI EncodeMMRImage(StreamHandle stream, DWORD width, DWORD height, DWORD reserved, DWORD userValue,
                               LineFunc lineFunction);

/*
 * Sets the K factor of Group 3 two-dimensional encoding: every K-th line is coded one-dimensionally. It is 2 until it
 * is set. Result: 1, or 0 for a K below 2, which changes nothing.
 */
DWORD VELLUMAPI SetKfactor(LONG k);

/* ---------------------------------------------------------------- saving ------------------------------------------ */

/* Compression codes of the save functions; also the identifiers of the save dialog's buttons. */
#define VELLUM_SAVE_UNCOMPRESSED 201     /* Compression 1 */
#define VELLUM_SAVE_PACKBITS 202         /* 32773 */
#define VELLUM_SAVE_LZW 203              /* 5 */
#define VELLUM_SAVE_LZW_DIFFERENCING 204 /* 5 with Predictor 2 */
#define VELLUM_SAVE_MODIFIED_HUFFMAN 205 /* 2; this one and the next three take 1 bit per pixel only */
#define VELLUM_SAVE_GROUP3_1D 206        /* 3 */
#define VELLUM_SAVE_GROUP3_2D 207        /* 3 with T4Options 1 */
#define VELLUM_SAVE_GROUP4 208           /* 4 */
#define VELLUM_SAVE_JPEG 209             /* 6, by the companion module: 24 bits, or 8 bits of grey */

/* Modes of SaveBitmapInCcittFile. */
#define VELLUM_CCITT_GROUP3_1D 5        /* VELLUM_KEY_GROUP3_1D */
#define VELLUM_CCITT_MODIFIED_HUFFMAN 6 /* VELLUM_KEY_MODIFIED_HUFFMAN */
#define VELLUM_CCITT_GROUP3_2D 7        /* VELLUM_KEY_GROUP3_2D */
#define VELLUM_CCITT_GROUP4 8           /* VELLUM_KEY_GROUP4 */
#define VELLUM_CCITT_UNCOMPRESSED 9     /* VELLUM_KEY_NONE */

/*
 * Saves a packed DIB as a new image of a TIFF file: a file that is missing is made, to one that exists the image is
 * added, in the file's byte order. The DIB stays the caller's.
 *   fileName         at most 149 characters
 *   dib              1, 4, 8 or 24 bits per pixel, uncompressed, bottom-up; the header is followed by the colour table,
 *                    that by the rows
 *   compressionCode  VELLUM_SAVE_...
 *   showDialog       non-zero asks the user: the code is the user's then, and so are photometric interpretation, fill
 *                    order, title (ImageDescription) and artist
 *   fillOrder        1, or 2 to reverse the bits of every code byte; the dialog begins with it
 * Without the dialog bilevel images are white is zero or black is zero as their first colour says, 4 and 8 bits are
 * palette images, 24 bits RGB. Title and artist are those of the last save that asked, so that a program can ask once
 * and save the other pages alike. The resolution is the DIB's, or where it has none the screen's.
 * Result: 1 or 0; also 0, with error 0, when the user cancels.
 * Errors: 1 (also: a handle that cannot be locked), 2 (the file cannot be opened as a TIFF), 11 (no such code), 16 (a
 * DIB that cannot be saved, or not with this code; nothing is written), and those of EncodeTiffImage. JPEG without the
 * companion module shows a message box and counts as success.
 */
DWORD VELLUMAPI SaveDIBInTiffFileExt(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog,
                                     LONG fillOrder);

/* As SaveDIBInTiffFileExt with fill order 1. The two do the same. */
DWORD VELLUMAPI SaveDIBInTiffFile(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog);
DWORD VELLUMAPI SaveDIBInTiffFormat(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog);

/*
 * As SaveDIBInTiffFileExt, for fax receivers: a bilevel image is always stored as white is zero, its pixels
 * complemented if its first colour is black. Other images are saved as SaveDIBInTiffFileExt does it. Writes traces
 * for debuggers (OutputDebugString).
 */
DWORD VELLUMAPI SaveDIBInGammaTiffFile(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog,
                                       LONG fillOrder);

/*
 * As SaveDIBInTiffFileExt, of a bitmap, which stays the caller's and must not be selected into a device context.
 * Bitmaps of other depths than 1, 4, 8 and 24 bits per pixel (the screen's 32, say) are saved with 24. Without the
 * dialog 1, 4 and 8 bits become palette images, or bilevel ones with the CCITT codes. The resolution is the screen's.
 * Result: 1 or 0. A code that is none gives 0 and sets no error; any other failure shows a message box, with or without
 * the dialog. Errors: as SaveDIBInTiffFileExt.
 */
DWORD VELLUMAPI SaveBitmapInTiffFileExt(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog,
                                        LONG fillOrder);

/* As SaveBitmapInTiffFileExt with fill order 1. The two do the same. */
DWORD VELLUMAPI SaveBitmapInTiffFile(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog);
DWORD VELLUMAPI SaveBitmapInTiffFormat(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog);

/*
 * As SaveBitmapInTiffFileExt, of the bitmap on the clipboard, always with fill order 2. Without a bitmap on the
 * clipboard the result is 0 and nothing is shown.
 */
DWORD VELLUMAPI SaveTiffFileFromClipboard(const char *fileName, LONG compressionCode, LONG showDialog);

/*
 * Makes a file that holds a bitmap as a headerless code stream, least significant bit first. The pixels are coded as
 * GetDIBits gives them with 1 bit: 0 for black, which the code calls white.
 *   mode  VELLUM_CCITT_...; any other gives 0 at once
 * Result: 1, or 0 after a message box. Errors: 6 and those of EncodeCcittImageTo.
 */
DWORD VELLUMAPI SaveBitmapInCcittFile(const char *fileName, HBITMAP bitmap, LONG mode);

/*
 * Defines XResolution and YResolution of a registered image; ResolutionUnit is left to the caller.
 *   dpi  horizontal in the high word, vertical in the low word: the other way round than GetTiffImageDPI has it
 * Result: 0, or 10 (which is stored, too) when they cannot be defined, be it because the image is not registered.
 */
DWORD VELLUMAPI SetTiffImageDPI(TiffHandle tiff, DWORD index, DWORD dpi);

/*
 * The dialog procedure of the save dialog, template "SAVETIFF" in the library's resources. WM_INITDIALOG's lParam
 * points to a BITMAP that tells planes and bits per pixel. The dialog ends with 1 for OK and 0 for Cancel.
 */
INT_PTR VELLUMAPI DllTiffSaveDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/*
 * The savers' fill functions, for EncodeTiffImage: line by line out of a packed DIB (...LineDIB; ...LineDIB24Bit with
 * red and blue exchanged; ...LineDIBforGamma complementing when asked to) or out of a device-dependent bitmap
 * (...TiffLine; ...MonoTiffLine complementing; ...LineBitmap24Bit with red and blue exchanged; DllFillCcittLine only
 * during SaveBitmapInCcittFile). A row outside the picture leaves the line as it is. Result: 0. They are handed to
 * EncodeTiffImage cast to LineFunc, with the record's address as the user value.
 */
DWORD VELLUMAPI DllFillTiffLine(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillMonoTiffLine(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillTiffLineDIB(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillTiffLineDIBforGamma(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillTiffLineDIB24Bit(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillTiffLineBitmap24Bit(BYTE *line, DWORD row, SaveLineContext *context);
DWORD VELLUMAPI DllFillCcittLine(BYTE *line, DWORD row, CcittLineContext *context);

/* ---------------------------------------------------------------- copying and editing files ------------------------
 */

/*
 * Copies an image into another TIFF without decoding it: its strips (or, for JPEG, tiles and coding tables) byte for
 * byte, its tags in ascending order. A new file is in Intel order, an existing one keeps its order.
 *   source       an open TIFF and the index of its image
 *   destination  an open TIFF that is being created or appended to
 * Tags that lead to other directories (SubIFDs and the like) are left out.
 * Result: 1 or 0. Errors: 1, 3, 4 (strip offsets and byte counts do not go together), 6, 7, 8, 10, 14. A source image
 * that was not registered before is not so afterwards.
 */
DWORD VELLUMAPI CopyTiffImage(TiffHandle source, DWORD sourceIndex, TiffHandle destination);

/* The same by file names; mode is that of OpenTiffFile for the destination. */
DWORD VELLUMAPI CopyTiffImageInFile(const char *sourceName, DWORD sourceIndex, const char *destinationName, DWORD mode);

/*
 * Adds a tag to an image of a file on disk, in place of any that it had. The file is rebuilt in Intel order beside the
 * old one, which it then replaces in one step; on failure the old one stays as it was. Handles that were open on the
 * file are out of date afterwards.
 *   index   of the image, from 0
 *   values  in the machine's byte order
 *   type    TIFF field type, as for DefineTiffImageInfoBuffer
 *   count   number of values
 * Result: 1 or 0; the error number is set either way. Errors: 1 (also a file that is no TIFF), 3, 4, 6, 7, 10, and 9
 * for what would be lost or left useless: tags that lead to directories outside the chain, tag numbers above 65535,
 * values of the types SSHORT, SRATIONAL, FLOAT and DOUBLE, another Compression for a JPEG image.
 */
DWORD VELLUMAPI AddTiffTagToImage(const char *fileName, LONG index, DWORD tag, DWORD type, const void *values,
                                  DWORD count);

/* Removes a tag from an image of a file on disk, in the same way. A tag that is not there is no error. */
DWORD VELLUMAPI DeleteTiffTagOfImage(const char *fileName, LONG index, DWORD tag);

/*
 * Copies the coded strips of an image, without header or tags, to the end of an existing file.
 *   target    the file. It is DELETED when the copy fails half-way, though it was there before
 *   tiffPath  the TIFF, at most 149 characters
 *   image     index of its image, from 0
 *   offset    where to start, counted from the target's end: 0 appends, below 0 overwrites, above 0 leaves a gap
 * Result: the target's path in a buffer of the library's that lasts until the next call, or NULL. Only the opening of
 * the TIFF and of its image sets an error number.
 */
char *VELLUMAPI AppendCCITTImageFile(const char *target, const char *tiffPath, DWORD image, LONG offset);

/* ---------------------------------------------------------------- IOCA and MO:DCA --------------------------------- */

/*
 * The framing of a bilevel image as an IOCA image segment, with or without a MO:DCA structured field before it. The
 * caller opens the file; all calls work at its position. Between header and tail stands the stream of EncodeMMRImage.
 *
 * Readers. Result: 1 or 0, no error number. The position is then behind what was read. A file without any Begin Segment
 * is closed by ReadIOCAHeader; ReadMODCAHeader looks for the MO:DCA field in 2048 bytes and closes nothing before.
 */
DWORD VELLUMAPI ReadIOCAHeader(HFILE file, IocaHeader *header);
DWORD VELLUMAPI ReadMODCAHeader(HFILE file, IocaHeader *header);

/* Writers. Resolutions, width and height of the header count, its other fields do not. Result: 1, or 0 with error 6. */
DWORD VELLUMAPI WriteIOCAHeader(HFILE file, const IocaHeader *header);
DWORD VELLUMAPI WriteMODCAHeader(HFILE file, const IocaHeader *header);

/* Result: 1 or 0; no error number. */
DWORD VELLUMAPI WriteIOCATail(HFILE file);

/*
 * Ends what WriteMODCAHeader began, and writes its length to the bytes 28 and 29 of the file: the caller has written 30
 * bytes of structured fields of his own before WriteMODCAHeader, the last two of which are the length of the field that
 * it begins. Result: 1, or 0 with error 6.
 */
DWORD VELLUMAPI WriteMODCATail(HFILE file);

/* ---------------------------------------------------------------- CALS raster files ------------------------------- */

/*
 * A CALS Type 1 raster file is a header of 2048 characters - 16 records of 128, each a keyword, a value and blanks -
 * with one bilevel image behind it in Group 4 code. The calls that have to do with a header pass it in a block of
 * VELLUM_CALS_BLOCK bytes: the records as the file has them, and some spare bytes.
 */
#define VELLUM_CALS_HEADER 2048 /* bytes of a header */
#define VELLUM_CALS_RECORD 128  /* bytes of a record */
#define VELLUM_CALS_BLOCK 2248  /* bytes of a block that holds a header */

/*
 * Reads a file's header. That every record ends with a blank or a NUL is all that is checked.
 * Result: a block that the caller frees, or NULL. Errors: 1, 6 (the file does not open), 18 (it is shorter than a
 * header, or no header). A path that is NULL or empty sets no error.
 */
HGLOBAL VELLUMAPI ReadCALSHead(const char *path);

/*
 * Finds a record.
 *   header   the first record, of a locked block
 *   keyword  what the record begins with, byte for byte: "notes: "
 * Result: the first such record, which is 128 characters long and has no terminator, or NULL. A record that begins with
 * a blank or a NUL is none.
 */
char *VELLUMAPI FindCALSRecord(char *header, const char *keyword);

/*
 * Reads the numbers of a file's header. "dtype: " serves where there is no "rtype: ", "rdensity: " where there is no
 * "rdensty: "; a value that is no number is 0, one that a LONG cannot hold its nearest value.
 * Result: 1, or 0 when the header cannot be read, lacks one of the four records, has another raster type than 1 or no
 * pixels. Errors: those of ReadCALSHead, 18. Without info no error is set.
 */
DWORD VELLUMAPI ReadCALSInfo(const char *path, CalsInfo *info);

/*
 * Reads the texts of a file's header.
 *   notes  receives pointers into the block that comes back, NULL for texts that are not there
 * Each text but the last one is followed, without a terminator, by those behind it: with AB in the first and CD in the
 * last of two, the first reads "ABCD". The texts stand in the order of the record's members, whatever their order in
 * the file: each ends where the next that is not NULL begins. Copy them apart before they are handed to DefineCALSHead
 * or SaveDIBInCALSFormat (examples/cals_notes.c). The pointers are good until the block is freed or reallocated.
 * Result: a block that the caller frees when he needs the texts no more, or NULL. Errors: those of ReadCALSHead.
 * Without notes no error is set.
 */
HGLOBAL VELLUMAPI ReadCALSNote(const char *path, CalsNotes *notes);

/*
 * Makes a header.
 *   notes  NULL for "NONE" in every text
 * A text that its record has no room for is cut.
 * Result: a block that the caller frees, or NULL. Errors: 1. Without info no error is set.
 */
HGLOBAL VELLUMAPI DefineCALSHead(const CalsInfo *info, const CalsNotes *notes);

/*
 * Loads a CALS file into a packed DIB of 1 bit per pixel, white (0) and black (1).
 *   showInfo  non-zero shows the header first (ShowCALSInfo)
 * Result: a block that the caller frees, or NULL; also NULL, with error 0, when the user cancels. An image whose data
 * end early comes back as far as it goes, the rest white, after a message box with the caption "CALS warning" and with
 * error 5, 19 or 20 pending; on full success the error is 0.
 * Errors: those of ReadCALSInfo; 1 also for a size that is none or that the file cannot fill; those of
 * DecodeCcittImageFrom.
 */
HGLOBAL VELLUMAPI LoadCALSIntoDIB(const char *path, LONG showInfo);

/*
 * Makes a CALS file of a packed DIB; a file of that name is replaced. The DIB stays the caller's.
 *   dib          1 bit per pixel, with a header of 40 bytes and two colours, uncompressed, bottom-up. The second colour
 *                is stored as black, or the first one if that is black
 *   notes        the texts of the header, or NULL
 *   orientation  two angles for "rorient: " (those of a file that was loaded are in its CalsInfo), or NULL for 90 and
 *                270
 *   showEdit     non-zero lets the user edit the texts first (EditCALSHead)
 * The density is the DIB's horizontal resolution, 0 if it has none; a CALS file has no other for the vertical one.
 * The edit dialog has no owner, so that a program disables its window around the call. A file that fails while it is
 * written is left as far as it got; the one before it is gone then.
 * Result: 1 or 0; also 1, with error 0 and no file made, when the user cancels.
 * Errors: 1 (also: a dialog that cannot be shown, a handle that cannot be locked), 16 (another DIB), 12 (wider than
 * 33280 pixels), 6 (the file cannot be made or written) and those of EncodeCcittImage. 12 and 16 are found before the
 * file is touched.
 */
DWORD VELLUMAPI SaveDIBInCALSFormat(const char *path, HGLOBAL dib, const CalsNotes *notes, const LONG *orientation,
                                    LONG showEdit);

/* Shows a file's header, or why it cannot be read. Result: 1 for OK, 2 for Cancel, -1 without a dialog. */
LONG VELLUMAPI ShowCALSInfo(HWND parent, const char *path);

/*
 * Lets the user edit the texts of a header.
 *   path    shown, if it is not NULL
 *   header  the first record, of a locked block. With OK its text records are rewritten; a text that has no record in
 *           it is dropped. Otherwise the header is as it was
 * Result: 1 for OK, 2 for Cancel, -1 without a dialog.
 */
LONG VELLUMAPI EditCALSHead(HWND parent, const char *path, char *header);

/*
 * The procedures of the two dialogs, templates "CALSINFO" and "CALSEDIT" in the library's resources. WM_INITDIALOG's
 * lParam is the path for CALSINFO; CALSEDIT works on what EditCALSHead was given. Both end with 1 or 2.
 */
INT_PTR VELLUMAPI CalsDllInfoDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR VELLUMAPI CalsDllEditDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/*
 * The line functions of the CALS calls: a decoded line into a packed DIB, and a line out of one for an encoder, both
 * with line 0 in the last row. A row outside the picture is left alone. Result: 0. They are handed to a decode or
 * encode call cast to LineFunc, with the record's address as the user value.
 */
DWORD VELLUMAPI DllFlushCALSLineDIB(BYTE *line, DWORD row, CalsLineContext *context);
DWORD VELLUMAPI DllFillCALSLineDIB(BYTE *line, DWORD row, CalsLineContext *context);

/*
 * Paints a CALS file on a window, as DecompressTiffToScreen does an image of a TIFF file.
 *   zoom   NULL, or the ratios that the scales of VELLUM_SHOW_BY_RESOLUTION are multiplied by. A pair with a zero or a
 *          negative number counts for nothing.
 *   flags  VELLUM_ROTATE_..., VELLUM_SHOW_BY_RESOLUTION, VELLUM_SHOW_FIT. VELLUM_SHOW_INVERTED paints with SRCCOPY:
 *          set bits are white. Without it they are black (NOTSRCCOPY).
 * Result: 1, or 0 for an empty path, no device context, or an error. A picture whose data end early stays on the screen
 * as far as it goes. Errors: those of ReadCALSInfo; 1, also for negative pixel counts and for a picture that the file
 * cannot fill, as LoadCALSIntoDIB; 6; those of decoding.
 */
DWORD VELLUMAPI DecompressCALSToScreen(HWND window, HDC dc, const char *path, const LONG *zoom, BYTE flags);

/*
 * The line functions of the CALS painter, by rotation; like those for bilevel images of TIFF files.
 * Result: 0.
 */
DWORD VELLUMAPI FlushCALSLineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushCALS90LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushCALS180LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);
DWORD VELLUMAPI FlushCALS270LineToScreen(BYTE *line, LONG row, ScreenLineContext *context);

/* ---------------------------------------------------------------- annotations ------------------------------------- */

/*
 * Annotations of the companion module rmark32.dll, stored as bytes in a tag of image 0; the tag number 0 stands for
 * 32768. Without the module both functions return 0 and touch nothing.
 */

/*
 * Stores a set of annotations in the file of an open TIFF, which is changed on disk.
 *   annotations  the module's set; one that is empty removes the tag
 * Result: 1 when stored, else 0 (also for an empty set, and for a TIFF in memory). Errors: as AddTiffTagToImage.
 */
DWORD VELLUMAPI SaveAnnotationIntoTiff(TiffHandle tiff, DWORD annotations, DWORD tag);

/* Result: the set that the module makes of the stored bytes, or 0. */
DWORD VELLUMAPI LoadAnnotationFromTiff(const char *path, DWORD tag);

/* ---------------------------------------------------------------- fax pages and overlays -------------------------- */

/* Flags of FaxPageParams. */
#define VELLUM_FAX_HUNDREDTHS 1 /* lengths are hundredths of an inch, not millimetres */
#define VELLUM_FAX_ITALIC 2
#define VELLUM_FAX_BOLD 4

/* What CreateFaxPageFromASCII makes. Any other number counts as 10. */
#define VELLUM_FAX_BITMAPS 10 /* device-dependent bitmaps, to be deleted with DeleteObject */
#define VELLUM_FAX_DIBS 11    /* packed DIBs, to be freed with GlobalFree */

/* What it tells of its work. */
#define VELLUM_FAX_COMPLETE 0      /* the whole text is on the pages */
#define VELLUM_FAX_NOTHING_TO_DO 1 /* no record, no array for the pages, or a page limit of 0 */
#define VELLUM_FAX_PAGE_LIMIT 2    /* there are more pages than room: the text goes on, or ends with a full page */
#define VELLUM_FAX_NO_TEXT 3       /* the text file could not be opened */
#define VELLUM_FAX_NO_MEMORY 4     /* a page, its DIB or the memory device context could not be made */

/*
 * Draws a text file on pages, black on white, 1 bit per pixel.
 *   params    the page, its font, the file; stays as it is
 *   maxPages  how many handles there is room for
 *   pages     receives the pages, which belong to the caller then; entries behind the last page stay as they are
 *   kind      VELLUM_FAX_BITMAPS or VELLUM_FAX_DIBS
 *   bitmap    NULL, or a bitmap to draw the first page on, as it is and with a transparent background. It must not be
 *             selected into a device context, and stays the caller's in any case
 *   status    NULL, or receives VELLUM_FAX_COMPLETE ...
 * Result: the number of pages. The error number is not touched.
 *
 * With a bitmap and VELLUM_FAX_BITMAPS, it is pages[0], and the other pages are the library's. With VELLUM_FAX_DIBS
 * pages[0] is a DIB of it (of its depth, or of 24 bits per pixel where that is not 1, 4 or 8), and all other pages are
 * drawn on it in turn, cleared.
 *
 * A carriage return, with the byte behind it, ends a line; a tab leads to the next of the tab stops, unless that has
 * been passed already; all other bytes below 32 are left out, line feeds and form feeds too. A line that reaches the
 * right margin goes on below, behind its last blank or ! , - . : ; ? if it has one. A page is full when the next line
 * would begin in the bottom margin: a text that fills its page to the last line and ends that line has one more page.
 *
 * The file is in the ANSI code page. Lines that end with a line feed alone run into one: put CR LF there first. A
 * record whose page has no pixels gives VELLUM_FAX_NO_MEMORY; without tab stops a tab adds nothing; without a face the
 * font size counts for nothing; margins that leave no room give every byte a line, or a page, of its own.
 *
 * DIBs have the record's resolutions, their pixels per metre cut to a whole number: 8031 for 204 dots per inch. A saver
 * cuts again, to 203: for a TIFF of whole dots per inch set biXPelsPerMeter to the next number above dpi / 0.0254
 * before (204: 8032, 196: 7717). A fax machine's line has 1728 pixels, which no record at 204 dots per inch gives: draw
 * on a white bitmap of your own that is so wide.
 *
 * A line is as wide as its bytes are one by one. In an ANSI code page with characters of two bytes and more (932, 936,
 * UTF-8) that is not what is drawn: lines are wrapped too early or too late there, perhaps within a character.
 */
DWORD VELLUMAPI CreateFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD kind,
                                       HBITMAP bitmap, DWORD *status);

/* The same for bitmaps, and for DIBs, without a bitmap of the caller's. */
DWORD VELLUMAPI CreateBMPFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD *status);
DWORD VELLUMAPI CreateDIBFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD *status);

/*
 * Prints a text file on a form.
 *   tiffPath  the form: image 0 of a TIFF
 *   params    as for CreateFaxPageFromASCII; the page is the form, whatever its size. Give it the form's resolution
 *             (GetTiffImageDPI)
 * Only the text's first page is used. Result: the form with the text, a bitmap for the screen; or NULL when the form
 * could not be loaded. When there is something wrong with the text, the form comes without it.
 * Errors: as LoadTiffIntoBitmap, of the form alone.
 */
HBITMAP VELLUMAPI BitmapFormOverlay(const char *tiffPath, const FaxPageParams *params);

/*
 * The same as a packed DIB, with the record's resolutions; NULL also when there is something wrong with the text, with
 * the error number 0 then.
 */
HGLOBAL VELLUMAPI DIBFormOverlay(const char *tiffPath, const FaxPageParams *params);

/*
 * Prints some lines of text on a copy of a picture, in black, with a transparent background.
 *   bitmap       stays the caller's and as it is
 *   x, y         where the first line begins, from the upper left corner, in pixels of the screen: on a picture of
 *                another resolution they are scaled
 *   text         ends with a zero; every line feed begins a line, a carriage return alone does not
 *   face         name of a font, of which 31 characters count
 *   points       its size; letters far larger than the picture are made smaller
 *   xResolution  the picture's dots per inch; 0 for the screen's
 *   yResolution  likewise
 * So x is millimetres * LOGPIXELSX / 25.4, or a pixel of the picture * LOGPIXELSX / xResolution. Lines are not wrapped.
 *
 * Nothing is drawn to the left of x or above y, counted in pixels of the picture: on a picture coarser than the screen
 * that cuts the text's beginning off. There, say that the resolution is the screen's (0), and give place and size in
 * pixels of the picture: points * dpi / LOGPIXELSY.
 *
 * Result: a new bitmap of the same size and depth, also for an empty text or face and where the text lies outside; or
 * NULL, without a text or a face, too. Sets no error number.
 */
HBITMAP VELLUMAPI BitmapTextOverlay(HBITMAP bitmap, LONG x, LONG y, const char *text, const char *face, DWORD points,
                                    DWORD xResolution, DWORD yResolution);

/*
 * The same of a packed DIB (1, 4, 8, 16, 24 or 32 bits per pixel, uncompressed, bottom-up), by its own resolution. The
 * text has the nearest colour to black that the DIB's colour table has.
 * Result: a new DIB of the same depth and colours, or NULL. Its resolution is the old one cut to whole dots per inch,
 * and their pixels per metre cut to a whole number: set the fields again, or a picture that is stamped and saved
 * several times loses a dot per inch or two each time. On a picture coarser than the screen clear them for the call.
 */
HGLOBAL VELLUMAPI DIBTextOverlay(HGLOBAL dib, LONG x, LONG y, const char *text, const char *face, DWORD points);

/* ---------------------------------------------------------------- notes ------------------------------------------- */

/* Placing a note, and painting. */
#define VELLUM_NOTE_BY_RESOLUTION 0x4 /* NotePlus: the image is shown at its true size on the screen */
#define VELLUM_NOTE_CENTERED 0x80     /* NotePlus: an image that is smaller than the window stands in its middle */

/*
 * Stores a note in a tag of an image of an open TIFF: tag 316, ASCII, as in "~,1,O,10,20,110,52,6,Hello": O or, for a
 * transparent note, T; left, top, right, bottom; the low 16 bits of the size of the text's block; the text. Nothing
 * else of the record counts. The file on disk stays as it is: AddTiffTagToImage, or the writing of the image, changes
 * it. To change it there, take the tag's value with GetTiffImageInfoBuffer, close the file, and give the value to
 * AddTiffTagToImage. The rectangle is stored as it is, and nothing is drawn outside it: give it the text's size.
 * Result: 1, or 0: no handle, no text, no memory for it. Errors: those of GetTiffImage and DefineTiffImageInfoBuffer.
 */
LONG VELLUMAPI AddNoteTagToTiff(TiffHandle tiff, DWORD index, const NoteRecord *note);

/*
 * Reads it.
 *   note  gets everything but the image; text is a new block that the caller frees, the one before is not freed. When
 *         there is no note it stays as it is.
 * The block has the size that the tag tells, or as much as the text needs if that is more. In a number every character
 * counts as a digit, so that a minus sign gives a wrong number.
 * Result: 1, or 0 when there is no note, also when tag 316 holds something else.
 * Errors: those of GetTiffImage and GetTiffImageInfoBuffer.
 */
LONG VELLUMAPI GetNoteTagFromTiff(TiffHandle tiff, DWORD index, NoteRecord *note);

/*
 * Lets the user write a note (dialog NOTEITDLG), and does with it what he chose.
 *   window  shows the image: its scroll positions are added to the note's place, its device context's font measures the
 *           text. NULL: the screen
 * "Store" puts a new block into text, without freeing the one that was there, and gives the rectangle the text's size.
 * With "Stored text on Image" the note is then burned into the image: image becomes a new DIB of the same depth,
 * colours and resolution, text is freed and NULL. The old DIB stays the caller's. "Delete" frees the text and clears
 * inHeader.
 * The text that is burned in is about 16 pixels high, whatever the image's resolution. Without a user DIBTextOverlay
 * draws text into an image.
 * Result: 1 for a note that was stored (also when burning failed: text is still there then); 0 for "Cancel", "Delete",
 * and a note for the pixels without an image. Whatever it is, compare text and image with those before: what has
 * changed is the caller's. Sets no error number.
 */
LONG VELLUMAPI Note(HWND window, NoteRecord *note);

/*
 * The same at a place that the user clicked.
 *   clickPoint   NULL, or a point of the client area; without it the offset is added to the note's place
 *   imageOffset  NULL, or the image pixel in the upper left corner of the client area. Without it the scroll bars tell:
 *                position * (shown image - client area) / image, which is right for an image that is there, shown
 *                pixel for pixel, with bars that have its size as their range. Programs that zoom give an offset, or
 *                as examples/viewer/notes.c a point of the shown image, and an offset of 0, 0
 *   zoom         NULL, or numerator and denominator of the horizontal scale, and those of the vertical one. A pair that
 *                is not above zero counts for nothing.
 *   flags        VELLUM_NOTE_...
 * Result: 1 for a note in the header, and for one that was burned; else 0. "Delete" leaves inHeader as it is.
 */
LONG VELLUMAPI NotePlus(HWND window, NoteRecord *note, const POINT *clickPoint, const POINT *imageOffset,
                        const LONG *zoom, DWORD flags);

/*
 * The procedure of the dialog, template "NOTEITDLG" in the library's resources; WM_INITDIALOG's lParam is the
 * NoteRecord. It ends with 2 for "Store", 1 for "Delete", 0 for "Cancel".
 */
INT_PTR VELLUMAPI NoteDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/*
 * Draws a note that is kept as a text over an image that was painted before, in the device context's font and colours.
 *   window             counts for nothing
 *   imageOffset        the image pixel that is shown at destinationOrigin; NULL for 0, 0
 *   xScale, yScale     pixels of the device for one of the image
 *   destinationOrigin  in the device context; NULL for 0, 0
 * All of it counts in units of the device context's own mapping. DecompressTiffToScreen and its like leave theirs
 * behind: put SaveDC and RestoreDC around them. The scale is then the picture's size on the screen over its size in
 * pixels, and destinationOrigin is where its first pixel lies (negative when it is scrolled).
 *
 * The rectangle's place is scaled, its size is not. An opaque note's rectangle is filled once, before its lines, with
 * the device context's background colour. A line shows its first 40 characters, empty lines are left out. A note that
 * begins left of the image offset, or above it, is not drawn at all.
 * Result: 1 if it was drawn, also where the clip region hides all of it or its rectangle is empty; 0 if there is no
 * such note or no text, if it is not kept as one, if it begins outside, or if the device context cannot be saved.
 */
LONG VELLUMAPI PaintNotePlus(HWND window, HDC dc, const POINT *imageOffset, double xScale, double yScale,
                             const POINT *destinationOrigin, const NoteRecord *note);

/*
 * Answers WM_PAINT: shows a packed DIB in a window, and a note over it.
 *   dib   1, 4, 8, 16, 24 or 32 bits per pixel, uncompressed, bottom-up, with colour masks or without; of any other
 *         block only background is seen. NULL: the window is validated, and nothing is painted
 *   area  NULL, or the part of the client area that the image is to be seen in
 *   zoom  NULL, or numerator and denominator of the horizontal scale, and those of the vertical one. A pair with a zero
 *         counts for nothing.
 *   mode  VELLUM_SHOW_FIT: the whole image, in its proportions, and no note. VELLUM_SHOW_INVERTED: with NOTSRCCOPY
 *   note  NULL, or the note, which is shown if it is kept as a text
 * Otherwise the image has its true size on the screen, times the zoom; one without a resolution has the screen's.
 * Scroll bars are as those of DecompressTiffToScreen. The note's text is not scaled; what it may cover is its rectangle
 * by the image's resolution. The rest of the client area is filled with the brush of the window's class.
 * Result: 1, or 0 for a window that cannot be painted.
 */
LONG VELLUMAPI PaintDIBWithNote(HWND window, HGLOBAL dib, const RECT *area, const LONG *zoom, DWORD mode,
                                const NoteRecord *note);

#ifdef __cplusplus
}
#endif

#endif /* VELLUM32_H */
