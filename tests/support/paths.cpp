// Paths from the environment, below the current folder or from the build, and temporary files with names that no other
// test program uses.
#include "support/paths.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#ifdef VELLUM_NATIVE
#include <unistd.h>
#endif

namespace vellum::test {
namespace {

bool isFolder(const char *path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// What the variable names; else the relative path, which stays short wherever the checkout lies; else the absolute one.
std::string folder(const char *variable, const char *relative, const char *absolute) {
    const char *value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
        return value;
    }
    return isFolder(relative) ? relative : absolute;
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

File openFile(const std::string &path, const char *mode) {
    return File(std::fopen(path.c_str(), mode), &std::fclose);
}

unsigned long processId() {
#ifdef VELLUM_NATIVE
    return static_cast<unsigned long>(::getpid());
#else
    return GetCurrentProcessId();
#endif
}

} // namespace

std::string fixture(std::string_view name) {
    return folder("VELLUM_FIXTURES", "tests/corpus", VELLUM_FIXTURES_FOLDER).append("/").append(name);
}

std::string sample(std::string_view name) {
    return folder("VELLUM_SAMPLES", "../shared/samples", VELLUM_SAMPLES_FOLDER).append("/").append(name);
}

bool haveSamples() {
    return openFile(sample("manifest.jsonl"), "rb") != nullptr;
}

std::string tempFolder() {
#ifdef VELLUM_NATIVE
    const char *chosen = std::getenv("TMPDIR");
    return chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
#else
    char path[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathA(sizeof path, path);
    return std::string(path, length > 0 ? length - 1 : 0);
#endif
}

std::string tempPathOf(std::size_t characters, char letter) {
    const std::string folder = tempFolder() + "/";
    return folder + std::string(characters > folder.size() ? characters - folder.size() : 8, letter);
}

namespace {

// A name that no other run has: process numbers come round again, under Wine soon, and a run that was killed leaves its
// files behind.
std::string runName() {
    const auto time = std::chrono::system_clock::now().time_since_epoch().count();
    return std::to_string(processId()) + "-" + std::to_string(static_cast<std::uint32_t>(time / 100));
}

} // namespace

TempFile::TempFile() {
    static const std::string run = runName();
    static int counter = 0;
    path_ = tempFolder() + "/vt" + run + "-" + std::to_string(++counter) + ".tmp";
}

TempFile::TempFile(const Bytes &content) : TempFile() {
    if (!writeFile(path_, content)) {
        std::fprintf(stderr, "cannot write %s\n", path_.c_str());
        std::abort();
    }
}

TempFile::~TempFile() {
    static_cast<void>(std::remove(path_.c_str()));
}

std::optional<Bytes> readFile(const std::string &path) {
    const File file = openFile(path, "rb");
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return std::nullopt;
    }
    const long size = std::ftell(file.get());
    if (size < 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) {
        return std::nullopt;
    }
    Bytes content(static_cast<std::size_t>(size));
    if (std::fread(content.data(), 1, content.size(), file.get()) != content.size()) {
        return std::nullopt;
    }
    return content;
}

bool writeFile(const std::string &path, const Bytes &content) {
    const File file = openFile(path, "wb");
    return file && std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
}

} // namespace vellum::test
