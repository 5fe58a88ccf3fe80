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

/* The information dialog, TIFFINFO. */
#define IDC_INFO_DATE_LABEL 103
#define IDC_INFO_WIDTH_LABEL 107
#define IDC_INFO_PLANES_LABEL 109
#define IDC_INFO_BITS_LABEL 110
#define IDC_INFO_USER_FRAME 111
#define IDC_INFO_DIMENSIONS_FRAME 112
#define IDC_INFO_COLORS_FRAME 115
#define IDC_INFO_ARTIST_LABEL 119
#define IDC_INFO_TITLE_LABEL 121
#define IDC_INFO_COMPRESSION_FRAME 125
#define IDC_INFO_HEIGHT_LABEL 126
#define IDC_INFO_PREDICTOR_LABEL 128
#define IDC_INFO_STRIPS_LABEL 130
#define IDC_INFO_WIDTH 200
#define IDC_INFO_HEIGHT 201
#define IDC_INFO_PLANES 202
#define IDC_INFO_BITS 203
#define IDC_INFO_COLOR_FORMAT 204
#define IDC_INFO_TITLE 205
#define IDC_INFO_ARTIST 206
#define IDC_INFO_DATE 207
#define IDC_INFO_COMPRESSION 208
#define IDC_INFO_OPTION 209
#define IDC_INFO_STRIPS 210
/* Resolution: for templates of a program's own, TIFFINFO has no such controls. */
#define IDC_INFO_HORIZONTAL_DPI 211
#define IDC_INFO_VERTICAL_DPI 212

#endif
