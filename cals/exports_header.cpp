// The exported functions for CALS headers.
#include "cals/cals_header.h"
#include "cals/cals_records.h"

extern "C" {

HGLOBAL VELLUMAPI ReadCALSHead(const char *path) {
    return vellum::readCalsHead(path).release();
}

char *VELLUMAPI FindCALSRecord(char *header, const char *keyword) {
    return header == nullptr || keyword == nullptr ? nullptr : vellum::findCalsRecord(header, keyword);
}

DWORD VELLUMAPI ReadCALSInfo(const char *path, CalsInfo *info) {
    return info != nullptr && vellum::readCalsInfo(path, *info) ? 1 : 0;
}

HGLOBAL VELLUMAPI ReadCALSNote(const char *path, CalsNotes *notes) {
    return notes == nullptr ? nullptr : vellum::readCalsNotes(path, *notes).release();
}

HGLOBAL VELLUMAPI DefineCALSHead(const CalsInfo *info, const CalsNotes *notes) {
    const CalsNotes none{};
    return info == nullptr ? nullptr : vellum::defineCalsHead(*info, notes == nullptr ? none : *notes).release();
}

} // extern "C"
