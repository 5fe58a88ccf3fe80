/*
 * The viewer's window: it starts, hands messages to the functions of the other files, and ends.
 *   viewer [FILE]
 */
#include <windows.h>

#include <shellapi.h>
#include <stdlib.h>

#include "viewer.h"

static const char kClassName[] = "VellumViewer";

/* ---------------------------------------------------------------- keys, wheel, dropped files ---------------------- */

/* The other keys are accelerators. */
static void handleKey(Viewer *viewer, WPARAM key) {
    switch (key) {
    case VK_LEFT:
        scrollPixels(viewer, SB_HORZ, -SCROLL_LINE);
        break;
    case VK_RIGHT:
        scrollPixels(viewer, SB_HORZ, SCROLL_LINE);
        break;
    case VK_UP:
        scrollPixels(viewer, SB_VERT, -SCROLL_LINE);
        break;
    case VK_DOWN:
        scrollPixels(viewer, SB_VERT, SCROLL_LINE);
        break;
    case VK_ESCAPE:
        setPlacing(viewer, FALSE);
        break;
    default:
        break;
    }
}

static void handleWheel(Viewer *viewer, WPARAM wParam) {
    const int bar = (GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) != 0 ? SB_HORZ : SB_VERT;
    scrollByWheel(viewer, bar, GET_WHEEL_DELTA_WPARAM(wParam));
}

static void handleClick(Viewer *viewer, LPARAM where) {
    const POINT point = {(short)LOWORD(where), (short)HIWORD(where)};
    placeNote(viewer, point);
}

/* Over the client area there is a cross while a click places a note, else the cursor of the window's class. */
static LRESULT handleCursor(const Viewer *viewer, WPARAM wParam, LPARAM lParam) {
    if (!viewer->placing || LOWORD(lParam) != HTCLIENT) {
        return DefWindowProcA(viewer->window, WM_SETCURSOR, wParam, lParam);
    }
    SetCursor(LoadCursorA(NULL, (LPCSTR)IDC_CROSS));
    return TRUE;
}

static void handleDrop(Viewer *viewer, HDROP drop) {
    char path[MAX_PATH];
    const UINT length = DragQueryFileA(drop, 0, path, sizeof path);
    DragFinish(drop);
    if (length > 0) {
        openFile(viewer, path);
    }
}

/* ---------------------------------------------------------------- the window -------------------------------------- */

static void handleCreate(Viewer *viewer, HWND window) {
    viewer->window = window;
    SetWindowLongPtrA(window, GWLP_USERDATA, (LONG_PTR)viewer);
    prepareScrolling(window);
    DragAcceptFiles(window, TRUE);
    updateFrame(viewer);
}

static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Viewer *viewer = (Viewer *)GetWindowLongPtrA(window, GWLP_USERDATA);
    if (message == WM_CREATE) {
        handleCreate(((CREATESTRUCTA *)lParam)->lpCreateParams, window);
        return 0;
    }
    if (viewer == NULL) {
        return DefWindowProcA(window, message, wParam, lParam); /* messages before WM_CREATE */
    }
    switch (message) {
    case WM_PAINT:
        paintView(viewer);
        return 0;
    case WM_SIZE:
        InvalidateRect(window, NULL, TRUE);
        return 0;
    case WM_HSCROLL:
        handleScrollBar(viewer, SB_HORZ, LOWORD(wParam));
        return 0;
    case WM_VSCROLL:
        handleScrollBar(viewer, SB_VERT, LOWORD(wParam));
        return 0;
    case WM_MOUSEWHEEL:
        handleWheel(viewer, wParam);
        return 0;
    case WM_KEYDOWN:
        handleKey(viewer, wParam);
        return 0;
    case WM_LBUTTONUP:
        handleClick(viewer, lParam);
        return 0;
    case WM_SETCURSOR:
        return handleCursor(viewer, wParam, lParam);
    case WM_COMMAND:
        runCommand(viewer, LOWORD(wParam));
        return 0;
    case WM_DROPFILES:
        handleDrop(viewer, (HDROP)wParam);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

static HWND createWindow(HINSTANCE instance, Viewer *viewer) {
    WNDCLASSA windowClass;
    ZeroMemory(&windowClass, sizeof windowClass);
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconA(NULL, (LPCSTR)IDI_APPLICATION);
    windowClass.hCursor = LoadCursorA(NULL, (LPCSTR)IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_APPWORKSPACE); /* the painter fills with it, too */
    windowClass.lpszMenuName = "VIEWER";
    windowClass.lpszClassName = kClassName;
    if (RegisterClassA(&windowClass) == 0) {
        return NULL;
    }
    return CreateWindowA(kClassName, "", WS_OVERLAPPEDWINDOW | WS_HSCROLL | WS_VSCROLL, CW_USEDEFAULT, CW_USEDEFAULT,
                         CW_USEDEFAULT, CW_USEDEFAULT, NULL, NULL, instance, viewer);
}

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, char *commandLine, int show) {
    static Viewer viewer;
    HACCEL keys = LoadAcceleratorsA(instance, "VIEWER");
    HWND window = createWindow(instance, &viewer);
    MSG message;
    (void)previous;
    (void)commandLine;
    if (window == NULL) {
        return 1;
    }
    if (__argc > 1) {
        openFile(&viewer, __argv[1]);
    }
    ShowWindow(window, show);
    while (GetMessageA(&message, NULL, 0, 0) > 0) {
        if (!TranslateAcceleratorA(window, keys, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    return (int)message.wParam;
}
