// The part of the Win32 interface that the library uses outside GDI and dialogs, for 32-bit Linux builds under the
// sanitizers. Types have the sizes and the spelling of the real header. Every global block is an allocation of exactly
// its size, so that the address sanitizer sees a read behind its end; files are POSIX files. Tests control the shim
// through native/shim.h.
#pragma once

#include <cstddef>
#include <cstdint>

#define __stdcall __attribute__((stdcall))
#define WINAPI __stdcall
#define CALLBACK __stdcall
#define APIENTRY WINAPI
#define CONST const
// The real header defines these too: names that code cannot use.
#define near
#define far
#define TRUE 1
#define FALSE 0

using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = unsigned long;
using UINT = unsigned int;
using LONG = long;
using BOOL = int;
using CHAR = char;
using WCHAR = wchar_t;
using ULONG = unsigned long;
using ULONG_PTR = unsigned long;
using DWORD_PTR = unsigned long;
using LONG_PTR = long;
using UINT_PTR = unsigned int;
using INT_PTR = int;
using SIZE_T = unsigned long;
using LPARAM = LONG_PTR;
using WPARAM = UINT_PTR;
using LRESULT = LONG_PTR;
using LPSTR = char *;
using LPCSTR = const char *;
using LPVOID = void *;
using LPCVOID = const void *;
using LPDWORD = DWORD *;
using HANDLE = void *;
using HGLOBAL = HANDLE;
using HLOCAL = HANDLE;
using HFILE = int;
using FARPROC = INT_PTR(WINAPI *)();
static_assert(sizeof(DWORD) == 4 && sizeof(SIZE_T) == 4 && sizeof(HANDLE) == 4, "32-bit builds only");

#define VELLUM_DECLARE_HANDLE(name)                                                                                    \
    struct name##__;                                                                                                   \
    using name = name##__ *
VELLUM_DECLARE_HANDLE(HINSTANCE);
VELLUM_DECLARE_HANDLE(HWND);
VELLUM_DECLARE_HANDLE(HDC);
VELLUM_DECLARE_HANDLE(HBITMAP);
VELLUM_DECLARE_HANDLE(HPALETTE);
VELLUM_DECLARE_HANDLE(HICON);
#undef VELLUM_DECLARE_HANDLE
using HMODULE = HINSTANCE;
using HCURSOR = HICON;

#pragma pack(push, 1)
struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};
struct BITMAPFILEHEADER {
    WORD bfType;
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
};
struct LOGFONTA {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    CHAR lfFaceName[32];
};
struct POINT {
    LONG x;
    LONG y;
};
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
constexpr int OFS_MAXPATHNAME = 128;
struct OFSTRUCT {
    BYTE cBytes;
    BYTE fFixedDisk;
    WORD nErrCode;
    WORD Reserved1;
    WORD Reserved2;
    CHAR szPathName[OFS_MAXPATHNAME];
};
struct SECURITY_ATTRIBUTES;

#define BI_RGB 0L
#define BI_BITFIELDS 3L
#define DIB_RGB_COLORS 0
#define MAX_PATH 260
#define HFILE_ERROR (-1)
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(-1))
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFUL
#define GMEM_FIXED 0x0000
#define GMEM_MOVEABLE 0x0002
#define GMEM_ZEROINIT 0x0040
#define GMEM_MODIFY 0x0080
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)
#define GMEM_INVALID_HANDLE 0x8000
#define GMEM_LOCKCOUNT 0x00FF
#define OF_READ 0x0000
#define OF_WRITE 0x0001
#define OF_READWRITE 0x0002
#define OF_SHARE_COMPAT 0x0000
#define OF_SHARE_EXCLUSIVE 0x0010
#define OF_SHARE_DENY_WRITE 0x0020
#define OF_SHARE_DENY_READ 0x0030
#define OF_SHARE_DENY_NONE 0x0040
#define OF_PARSE 0x0100
#define OF_DELETE 0x0200
#define OF_CREATE 0x1000
#define OF_EXIST 0x4000
#define GENERIC_READ 0x80000000UL
#define GENERIC_WRITE 0x40000000UL
#define FILE_SHARE_READ 0x00000001UL
#define FILE_SHARE_WRITE 0x00000002UL
#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5
#define FILE_ATTRIBUTE_READONLY 0x00000001UL
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010UL
#define FILE_ATTRIBUTE_NORMAL 0x00000080UL
#define MOVEFILE_REPLACE_EXISTING 0x00000001UL
#define MOVEFILE_WRITE_THROUGH 0x00000008UL
#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2
#define NO_ERROR 0L
#define ERROR_FILE_NOT_FOUND 2L
#define ERROR_ACCESS_DENIED 5L
#define ERROR_INVALID_HANDLE 6L
#define ERROR_NOT_ENOUGH_MEMORY 8L
#define ERROR_FILE_EXISTS 80L
#define ERROR_NEGATIVE_SEEK 131L
#define ERROR_NOT_LOCKED 158L
#define MB_OK 0x00000000L
#define MB_ICONHAND 0x00000010L
#define MB_ICONSTOP MB_ICONHAND
#define MB_ICONERROR MB_ICONHAND
#define MB_ICONEXCLAMATION 0x00000030L
#define MB_ICONWARNING MB_ICONEXCLAMATION
#define MB_ICONINFORMATION 0x00000040L
#define MB_APPLMODAL 0x00000000L
#define MB_SYSTEMMODAL 0x00001000L
#define MB_TASKMODAL 0x00002000L
#define IDOK 1
#define IDCANCEL 2
#define LOGPIXELSX 88
#define LOGPIXELSY 90
#define IDC_ARROW (reinterpret_cast<LPCSTR>(32512))
#define IDC_WAIT (reinterpret_cast<LPCSTR>(32514))
#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

#define LOWORD(value) (static_cast<WORD>(static_cast<DWORD_PTR>(value) & 0xFFFF))
#define HIWORD(value) (static_cast<WORD>((static_cast<DWORD_PTR>(value) >> 16) & 0xFFFF))
#define MAKELONG(low, high)                                                                                            \
    (static_cast<LONG>(static_cast<WORD>(low) | (static_cast<DWORD>(static_cast<WORD>(high)) << 16)))

extern "C" {

// Movable memory (win32_memory.cpp). Locks are counted.
HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes);
HGLOBAL WINAPI GlobalReAlloc(HGLOBAL block, SIZE_T bytes, UINT flags);
HGLOBAL WINAPI GlobalFree(HGLOBAL block);
LPVOID WINAPI GlobalLock(HGLOBAL block);
BOOL WINAPI GlobalUnlock(HGLOBAL block);
SIZE_T WINAPI GlobalSize(HGLOBAL block);
UINT WINAPI GlobalFlags(HGLOBAL block);

// Files (win32_files.cpp).
HFILE WINAPI OpenFile(LPCSTR path, OFSTRUCT *opened, UINT flags);
HFILE WINAPI _lopen(LPCSTR path, int flags);
HFILE WINAPI _lcreat(LPCSTR path, int attributes);
UINT WINAPI _lread(HFILE file, LPVOID buffer, UINT count);
UINT WINAPI _lwrite(HFILE file, LPCSTR buffer, UINT count);
LONG WINAPI _hread(HFILE file, LPVOID buffer, LONG count);
LONG WINAPI _hwrite(HFILE file, LPCSTR buffer, LONG count);
LONG WINAPI _llseek(HFILE file, LONG offset, int origin);
HFILE WINAPI _lclose(HFILE file);
HANDLE WINAPI CreateFileA(LPCSTR path, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES *security, DWORD creation,
                          DWORD attributes, HANDLE pattern);
BOOL WINAPI CloseHandle(HANDLE handle);
DWORD WINAPI GetFileAttributesA(LPCSTR path);
DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high);
DWORD WINAPI SetFilePointer(HANDLE file, LONG offset, LONG *high, DWORD origin);
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD done, void *overlapped);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD done, void *overlapped);
DWORD WINAPI GetFullPathNameA(LPCSTR path, DWORD length, LPSTR buffer, LPSTR *filePart);
BOOL WINAPI DeleteFileA(LPCSTR path);
BOOL WINAPI FlushFileBuffers(HANDLE file);
BOOL WINAPI MoveFileA(LPCSTR from, LPCSTR to);
BOOL WINAPI MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags);
UINT WINAPI SetHandleCount(UINT count);

// Modules, messages, the screen and the rest (win32_system.cpp).
HMODULE WINAPI LoadLibraryA(LPCSTR name);
FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);
BOOL WINAPI FreeLibrary(HMODULE module);
int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);
HDC WINAPI GetDC(HWND window);
int WINAPI ReleaseDC(HWND window, HDC dc);
int WINAPI GetDeviceCaps(HDC dc, int index);
HCURSOR WINAPI LoadCursorA(HINSTANCE module, LPCSTR name);
HCURSOR WINAPI SetCursor(HCURSOR cursor);
DWORD WINAPI GetVersion();
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD error);
DWORD WINAPI GetTickCount();
void WINAPI OutputDebugStringA(LPCSTR text);
int WINAPI lstrlenA(LPCSTR text);
LPSTR WINAPI lstrcpyA(LPSTR to, LPCSTR from);
LPSTR WINAPI lstrcpynA(LPSTR to, LPCSTR from, int length);
LPSTR WINAPI lstrcatA(LPSTR to, LPCSTR from);
int WINAPI lstrcmpiA(LPCSTR a, LPCSTR b);
int WINAPI MulDiv(int number, int numerator, int denominator);

} // extern "C"

#define GetFullPathName GetFullPathNameA
#define CreateFile CreateFileA
#define DeleteFile DeleteFileA
#define GetFileAttributes GetFileAttributesA
#define LoadCursor LoadCursorA
#define LoadLibrary LoadLibraryA
#define MessageBox MessageBoxA
#define MoveFile MoveFileA
#define OutputDebugString OutputDebugStringA
