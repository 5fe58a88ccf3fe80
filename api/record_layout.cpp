// Nails down the records of the public header: programs and companion modules were compiled against these offsets.
// Makes no code.
#include "vellum32.h"

#include <cstddef>

namespace {

#define VELLUM_FIELD(record, field, offset) static_assert(offsetof(record, field) == offset, #record "." #field)

static_assert(sizeof(TiffFileInfo) == 160);
VELLUM_FIELD(TiffFileInfo, path, 0);
VELLUM_FIELD(TiffFileInfo, byteOrder, 150);
VELLUM_FIELD(TiffFileInfo, imageCount, 152);
VELLUM_FIELD(TiffFileInfo, firstDirectoryOffset, 156);

static_assert(sizeof(IocaHeader) == 22);
VELLUM_FIELD(IocaHeader, segmentName, 0);
VELLUM_FIELD(IocaHeader, contentParameter, 4);
VELLUM_FIELD(IocaHeader, horizontalResolution, 6);
VELLUM_FIELD(IocaHeader, verticalResolution, 8);
VELLUM_FIELD(IocaHeader, width, 10);
VELLUM_FIELD(IocaHeader, height, 12);
VELLUM_FIELD(IocaHeader, compression, 14);
VELLUM_FIELD(IocaHeader, firstBlockLength, 16);
VELLUM_FIELD(IocaHeader, firstBlockPosition, 18);

static_assert(sizeof(FaxPageParams) == 488);
VELLUM_FIELD(FaxPageParams, textFile, 0);
VELLUM_FIELD(FaxPageParams, pageWidth, 256);
VELLUM_FIELD(FaxPageParams, pageHeight, 260);
VELLUM_FIELD(FaxPageParams, leftMargin, 264);
VELLUM_FIELD(FaxPageParams, topMargin, 268);
VELLUM_FIELD(FaxPageParams, fontFace, 272);
VELLUM_FIELD(FaxPageParams, fontSize, 400);
VELLUM_FIELD(FaxPageParams, horizontalResolution, 404);
VELLUM_FIELD(FaxPageParams, verticalResolution, 408);
VELLUM_FIELD(FaxPageParams, lineSpacing, 412);
VELLUM_FIELD(FaxPageParams, tabStops, 416);
VELLUM_FIELD(FaxPageParams, flags, 480);
VELLUM_FIELD(FaxPageParams, fontDescription, 484);

static_assert(sizeof(CalsInfo) == 24);
VELLUM_FIELD(CalsInfo, rtype, 0);
VELLUM_FIELD(CalsInfo, rorient, 4);
VELLUM_FIELD(CalsInfo, rpelcnt, 12);
VELLUM_FIELD(CalsInfo, rdensty, 20);

static_assert(sizeof(CalsNotes) == 28);
VELLUM_FIELD(CalsNotes, srcdocid, 0);
VELLUM_FIELD(CalsNotes, dstdocis, 4);
VELLUM_FIELD(CalsNotes, txtfileid, 8);
VELLUM_FIELD(CalsNotes, figid, 12);
VELLUM_FIELD(CalsNotes, scrgph, 16);
VELLUM_FIELD(CalsNotes, doccls, 20);
VELLUM_FIELD(CalsNotes, notes, 24);

static_assert(sizeof(NoteRecord) == 32);
VELLUM_FIELD(NoteRecord, inHeader, 0);
VELLUM_FIELD(NoteRecord, opaque, 4);
VELLUM_FIELD(NoteRecord, text, 8);
VELLUM_FIELD(NoteRecord, left, 12);
VELLUM_FIELD(NoteRecord, top, 16);
VELLUM_FIELD(NoteRecord, right, 20);
VELLUM_FIELD(NoteRecord, bottom, 24);
VELLUM_FIELD(NoteRecord, image, 28);

static_assert(sizeof(CodecState) == 176);
VELLUM_FIELD(CodecState, codePointer, 0);
VELLUM_FIELD(CodecState, linePointer, 4);
VELLUM_FIELD(CodecState, codeBytesLeft, 8);
VELLUM_FIELD(CodecState, lineBytesLeft, 12);
VELLUM_FIELD(CodecState, pixelsLeft, 16);
VELLUM_FIELD(CodecState, userValue, 20);
VELLUM_FIELD(CodecState, stripEnd, 24);
VELLUM_FIELD(CodecState, image, 28);
VELLUM_FIELD(CodecState, bytesPerLine, 68);
VELLUM_FIELD(CodecState, compressionKey, 72);
VELLUM_FIELD(CodecState, currentLine, 76);
VELLUM_FIELD(CodecState, bufferBlock, 80);
VELLUM_FIELD(CodecState, stream, 84);
VELLUM_FIELD(CodecState, fillOrder, 88);
VELLUM_FIELD(CodecState, byteOrder, 92);
VELLUM_FIELD(CodecState, codeBuffer, 96);
VELLUM_FIELD(CodecState, bufferBase, 100);
VELLUM_FIELD(CodecState, codeCapacity, 104);
VELLUM_FIELD(CodecState, streamLimit, 108);
VELLUM_FIELD(CodecState, stripIndex, 112);
VELLUM_FIELD(CodecState, streamPosition, 116);
VELLUM_FIELD(CodecState, stripCount, 120);
VELLUM_FIELD(CodecState, rowsPerStrip, 124);
VELLUM_FIELD(CodecState, stripLastLine, 128);
VELLUM_FIELD(CodecState, stripOffsets, 132);
VELLUM_FIELD(CodecState, offsetsType, 136);
VELLUM_FIELD(CodecState, stripByteCounts, 140);
VELLUM_FIELD(CodecState, lineFunction, 144);
VELLUM_FIELD(CodecState, lineBuffer, 148);
VELLUM_FIELD(CodecState, lineBufferSize, 152);
VELLUM_FIELD(CodecState, jpegProcess, 156);
VELLUM_FIELD(CodecState, workBlocks, 160);

static_assert(sizeof(JpegCodecState) == 208);
VELLUM_FIELD(JpegCodecState, tileWidth, 176);
VELLUM_FIELD(JpegCodecState, tileLength, 180);
VELLUM_FIELD(JpegCodecState, tilesAcross, 184);
VELLUM_FIELD(JpegCodecState, tilesDown, 188);
VELLUM_FIELD(JpegCodecState, planarConfiguration, 192);
VELLUM_FIELD(JpegCodecState, restartInterval, 196);
VELLUM_FIELD(JpegCodecState, subsamplingHorizontal, 200);
VELLUM_FIELD(JpegCodecState, subsamplingVertical, 204);

static_assert(sizeof(LoadLineContext) == 28);
VELLUM_FIELD(LoadLineContext, dc, 0);
VELLUM_FIELD(LoadLineContext, bitmap, 4);
VELLUM_FIELD(LoadLineContext, hInfo, 8);
VELLUM_FIELD(LoadLineContext, bits, 12);
VELLUM_FIELD(LoadLineContext, height, 16);
VELLUM_FIELD(LoadLineContext, lineBytes, 20);
VELLUM_FIELD(LoadLineContext, strideOrUsage, 24);

static_assert(sizeof(TiffInfoDlgParam) == 8);
VELLUM_FIELD(TiffInfoDlgParam, tiff, 0);
VELLUM_FIELD(TiffInfoDlgParam, index, 4);

static_assert(sizeof(ScreenLineContext) == 40);
VELLUM_FIELD(ScreenLineContext, dc, 0);
VELLUM_FIELD(ScreenLineContext, bitmap, 4);
VELLUM_FIELD(ScreenLineContext, hInfo, 8);
VELLUM_FIELD(ScreenLineContext, reserved, 12);
VELLUM_FIELD(ScreenLineContext, pixelCount, 16);
VELLUM_FIELD(ScreenLineContext, bitmapBytes, 20);
VELLUM_FIELD(ScreenLineContext, colorUsage, 24);
VELLUM_FIELD(ScreenLineContext, header, 28);
VELLUM_FIELD(ScreenLineContext, rasterOperation, 32);
VELLUM_FIELD(ScreenLineContext, workBuffer, 36);

static_assert(sizeof(SaveLineContext) == 36);
VELLUM_FIELD(SaveLineContext, dc, 0);
VELLUM_FIELD(SaveLineContext, bitmap, 4);
VELLUM_FIELD(SaveLineContext, reserved, 8);
VELLUM_FIELD(SaveLineContext, bitmapInfo, 12);
VELLUM_FIELD(SaveLineContext, bits, 16);
VELLUM_FIELD(SaveLineContext, height, 20);
VELLUM_FIELD(SaveLineContext, rowBytes, 24);
VELLUM_FIELD(SaveLineContext, strideOrUsage, 28);
VELLUM_FIELD(SaveLineContext, invert, 32);

static_assert(sizeof(CcittLineContext) == 8);
VELLUM_FIELD(CcittLineContext, dc, 0);
VELLUM_FIELD(CcittLineContext, bitmap, 4);

static_assert(sizeof(CalsLineContext) == 20);
VELLUM_FIELD(CalsLineContext, bits, 0);
VELLUM_FIELD(CalsLineContext, height, 4);
VELLUM_FIELD(CalsLineContext, lineBytes, 8);
VELLUM_FIELD(CalsLineContext, stride, 12);
VELLUM_FIELD(CalsLineContext, invert, 16);

} // namespace
