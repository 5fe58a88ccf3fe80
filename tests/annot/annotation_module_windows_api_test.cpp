// The annotation module as Windows loads it: a DLL found by its name, for the length of a call.
#include "companion/noted.h"
#include "support/decode_lines.h"
#include "support/module_folder.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr char kModule[] = "rmark32.dll";

Bytes page() {
    tiff::Builder file;
    file.page({tiff::longs(256, {8}), tiff::longs(257, {1}), tiff::shorts(258, {1}), tiff::shorts(262, {1})}, {{0x5A}});
    return file.bytes();
}

DWORD setOf(const char *text) {
    return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(text));
}

DWORD save(const char *path, const char *text) {
    const TiffHandle tiff = OpenTiffFile(path, T_APPEND);
    const DWORD result = SaveAnnotationIntoTiff(tiff, setOf(text), 0);
    CloseTiffFile(tiff);
    return result;
}

Bytes stored(const char *path) {
    const OpenedTiff tiff{std::string(path)};
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    return storedTag(tiff.get(), 0, 32768).bytes;
}

TEST(AnnotationDll, IsLoadedForTheCallSavesLoadsAndRemoves) {
    const ModuleFolder folder("annotation_module");
    const TempFile file(page());
    EXPECT_EQ(save(file.path(), "rmk: a note"), 1U);
    EXPECT_EQ(GetModuleHandleA(kModule), nullptr) << "still loaded";
    EXPECT_EQ(stored(file.path()), (Bytes{'r', 'm', 'k', ':', ' ', 'a', ' ', 'n', 'o', 't', 'e'}));
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), MODULE_RECREATED_SET);
    EXPECT_EQ(GetModuleHandleA(kModule), nullptr) << "still loaded";
    EXPECT_EQ(save(file.path(), ""), 0U);
    EXPECT_EQ(stored(file.path()), Bytes());
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
}

TEST(AnnotationDll, GetsItsArgumentsAsItWasCompiledForThem) {
    const ModuleFolder folder("annotation_module");
    const HMODULE module = LoadLibraryA(kModule);
    ASSERT_NE(module, nullptr);
    const auto *noted =
        reinterpret_cast<const NotedByAnnotations *>(reinterpret_cast<const void *>(GetProcAddress(module, "noted")));
    ASSERT_NE(noted, nullptr);
    const TempFile file(page());
    const char text[] = "rmk 12345";
    EXPECT_EQ(save(file.path(), text), 1U);
    EXPECT_EQ(noted->countCalls, 1U);
    EXPECT_EQ(noted->saveCalls, 1U);
    EXPECT_EQ(noted->annotations, setOf(text));
    EXPECT_EQ(noted->size, 9U);
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), MODULE_RECREATED_SET);
    EXPECT_EQ(noted->loadCalls, 1U);
    EXPECT_EQ(noted->size, 9U);
    FreeLibrary(module);
}

TEST(AnnotationDll, WithoutItTheFileStaysAsItIs) {
    const TempFile file(page());
    EXPECT_EQ(save(file.path(), "rmk"), 0U);
    EXPECT_EQ(save(file.path(), ""), 0U);
    EXPECT_EQ(readFile(file.path()), page());
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
}

TEST(AnnotationDll, WithoutItsEntriesTheFileStaysAsItIs) {
    const ModuleFolder folder("annotation_module_without_entries");
    const TempFile file(page());
    EXPECT_EQ(save(file.path(), "rmk"), 0U);
    EXPECT_EQ(readFile(file.path()), page());
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
    EXPECT_EQ(GetModuleHandleA(kModule), nullptr) << "still loaded";
}

} // namespace
