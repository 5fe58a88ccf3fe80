/* The numbers of the viewer's menu commands, for the resource script and the code. */
#ifndef VIEWER_RESOURCE_H
#define VIEWER_RESOURCE_H

#define IDM_OPEN 100
#define IDM_SAVE_PAGE 101
#define IDM_INFORMATION 102
#define IDM_EXIT 103

#define IDM_COPY 200
#define IDM_PLACE_NOTE 201

#define IDM_NEXT_PAGE 300
#define IDM_PREVIOUS_PAGE 301
#define IDM_FIRST_PAGE 302
#define IDM_LAST_PAGE 303

/* One radio group, in the order of enum Sizing. */
#define IDM_FIT 400
#define IDM_PIXELS 401
#define IDM_TRUE_SIZE 402
#define IDM_ROTATE 410
#define IDM_INVERT 411

#endif
