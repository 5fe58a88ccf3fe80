/* The names and numbers that the resource script and the code share. */
#ifndef VELLUM_RESOURCE_H
#define VELLUM_RESOURCE_H

/* Labels and frames, which the code does not touch. */
#define IDC_LABEL -1

/* The save dialog, SAVETIFF. Its compression buttons have the codes of the save functions, VELLUM_SAVE_... */
#define IDC_SAVE_UNCOMPRESSED 201
#define IDC_SAVE_PACKBITS 202
#define IDC_SAVE_LZW 203
#define IDC_SAVE_LZW_DIFFERENCING 204
#define IDC_SAVE_MODIFIED_HUFFMAN 205
#define IDC_SAVE_GROUP3_1D 206
#define IDC_SAVE_GROUP3_2D 207
#define IDC_SAVE_GROUP4 208
#define IDC_SAVE_JPEG 209
#define IDC_SAVE_TITLE 250
#define IDC_SAVE_ARTIST 251
#define IDC_SAVE_MONOCHROME 260
#define IDC_SAVE_GREYSCALE 261
#define IDC_SAVE_PALETTE 262
#define IDC_SAVE_NORMAL_BITS 1014
#define IDC_SAVE_REVERSED_BITS 1015

/* The header of a CALS file, CALSINFO. */
#define IDC_CALS_INFO_FILE 111
#define IDC_CALS_INFO_RECORDS 1001

/* The texts of a CALS header, CALSEDIT. The edit fields are in the order of CalsNotes. */
#define IDC_CALS_EDIT_TYPE 111
#define IDC_CALS_EDIT_ORIENTATION 1003
#define IDC_CALS_EDIT_COUNTS 1004
#define IDC_CALS_EDIT_DENSITY 1005
#define IDC_CALS_EDIT_SRCDOCID 1006
#define IDC_CALS_EDIT_DSTDOCIS 1007
#define IDC_CALS_EDIT_TXTFILEID 1008
#define IDC_CALS_EDIT_FIGID 1009
#define IDC_CALS_EDIT_SCRGPH 1010
#define IDC_CALS_EDIT_DOCCLS 1011
#define IDC_CALS_EDIT_NOTES 1012
#define IDC_CALS_EDIT_FILE 1013

#endif
