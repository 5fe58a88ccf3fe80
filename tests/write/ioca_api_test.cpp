// Headers and tails of image objects: every byte that is written, every field that is read, and pages in them.
#include "image_object.h"
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr UINT kNewFile = OF_CREATE | OF_READWRITE;
constexpr DWORD kErrorBefore = VELLUM_EOFB_MISSING;

const Bytes kWrittenHeader = {0x70, 0,    0x91, 1,    0xFF, 0x94, 9, 0,    0x0B, 0xB8, 0x07, 0xD0, 0x06,
                              0xC0, 0x08, 0xDC, 0x95, 2,    1,    1, 0x96, 1,    1,    0x97, 1,    0};
static_assert(sizeof(IocaHeader) == 22);

// What a writer leaves in a new file that begins with these bytes.
template <class Writer>
Bytes written(const Bytes &before, Writer writer) {
    const TempFile file(before);
    {
        const PlainFile opened(file.path(), OF_READWRITE);
        opened.seek(static_cast<LONG>(before.size()));
        SetTiffError(kErrorBefore);
        EXPECT_EQ(writer(opened.get()), 1U);
        EXPECT_EQ(TiffError(), kErrorBefore) << "success leaves the error number";
    }
    return readFile(file.path()).value_or(Bytes());
}

// ---------------------------------------------------------------- writing

TEST(IocaWriting, TheHeaderIs26Bytes) {
    const IocaHeader header = pageHeader();
    EXPECT_EQ(written({}, [&](HFILE file) { return WriteIOCAHeader(file, &header); }), kWrittenHeader);
    EXPECT_EQ(written({1, 2}, [&](HFILE file) { return WriteIOCAHeader(file, &header); }),
              Bytes({1, 2}) + kWrittenHeader)
        << "at the current position";
}

TEST(IocaWriting, TheModcaHeaderHasThreeBytesBeforeIt) {
    const IocaHeader header = pageHeader();
    EXPECT_EQ(written({}, [&](HFILE file) { return WriteMODCAHeader(file, &header); }),
              Bytes({0xD3, 0xEE, 0xFB}) + kWrittenHeader);
}

TEST(IocaWriting, TheTailEndsContentAndSegment) {
    EXPECT_EQ(written({7}, [](HFILE file) { return WriteIOCATail(file); }), (Bytes{7, 0x93, 0, 0x71, 0}));
}

TEST(IocaWriting, TheModcaTailPutsTheLengthAtOffset28) {
    Bytes expected = Bytes(1000, 5) + Bytes{0x93, 0, 0x71, 0, 0xD3, 0xA9, 0xC7};
    expected[28] = 0x03;
    expected[29] = 0xCC;
    EXPECT_EQ(written(Bytes(1000, 5), [](HFILE file) { return WriteMODCATail(file); }), expected) << "972";
}

TEST(IocaWriting, LengthsBeyond16BitsAreCut) {
    Bytes expected = Bytes(70000, 5) + Bytes{0x93, 0, 0x71, 0, 0xD3, 0xA9, 0xC7};
    expected[28] = static_cast<BYTE>((70000 - 28) >> 8);
    expected[29] = static_cast<BYTE>(70000 - 28);
    EXPECT_TRUE(written(Bytes(70000, 5), [](HFILE file) { return WriteMODCATail(file); }) == expected);
}

// By design: offset 28 is written whatever the caller wrote before.
TEST(IocaWriting, AModcaTailInAShortFileWritesTheLengthBehindItsEnd) {
    const Bytes file = written(Bytes(10, 5), [](HFILE handle) { return WriteMODCATail(handle); });
    ASSERT_EQ(file.size(), 30U);
    EXPECT_EQ(Bytes(file.begin() + 10, file.begin() + 17), (Bytes{0x93, 0, 0x71, 0, 0xD3, 0xA9, 0xC7}));
    EXPECT_EQ(Bytes(file.begin() + 28, file.end()), (Bytes{0xFF, 0xEE})) << "10 - 28";
}

TEST(IocaWriting, TheFileStandsBehindTheTail) {
    const TempFile file(Bytes(100, 5));
    const PlainFile opened(file.path(), OF_READWRITE);
    opened.seek(50);
    EXPECT_EQ(WriteMODCATail(opened.get()), 1U);
    EXPECT_EQ(opened.position(), 57);
}

// ---------------------------------------------------------------- what is no file, no record

TEST(IocaArguments, WithoutARecordNothingIsReadOrWritten) {
    const TempFile file(ImageObject().bytes());
    const PlainFile opened(file.path(), OF_READWRITE);
    EXPECT_EQ(ReadIOCAHeader(opened.get(), nullptr), 0U);
    EXPECT_EQ(ReadMODCAHeader(opened.get(), nullptr), 0U);
    EXPECT_EQ(WriteIOCAHeader(opened.get(), nullptr), 0U);
    EXPECT_EQ(WriteMODCAHeader(opened.get(), nullptr), 0U);
    EXPECT_EQ(opened.position(), 0);
}

TEST(IocaArguments, OnlyFilesOfTheSystemAreTaken) {
    const HGLOBAL block = makeBlock(ImageObject().bytes());
    const TiffHandle tiff = OpenTiffInMemory(block, static_cast<DWORD>(GlobalSize(block)), T_CREAT);
    IocaHeader header = pageHeader();
    for (const HFILE file : {-2, -1, 0}) {
        EXPECT_EQ(WriteIOCAHeader(file, &header), 0U);
        EXPECT_EQ(WriteMODCAHeader(file, &header), 0U);
        EXPECT_EQ(WriteIOCATail(file), 0U);
        EXPECT_EQ(WriteMODCATail(file), 0U);
        EXPECT_EQ(ReadIOCAHeader(file, &header), 0U);
        EXPECT_EQ(ReadMODCAHeader(file, &header), 0U);
    }
    CloseTiffFile(tiff);
    EXPECT_EQ(blockBytes(block), ImageObject().bytes());
    GlobalFree(block);
}

// ---------------------------------------------------------------- reading

TEST(IocaReading, FillsEveryField) {
    const ImageObject object = {.before = {1, 2, 3},
                                .segment = {0x70, 4, 'P', 'a', 'g', 'e'},
                                .content = {0x91, 1, 0x42},
                                .encoding = {0x95, 2, 3, 1}};
    const HeaderRead read = readHeader(object.bytes());
    const DWORD position = static_cast<DWORD>(object.bytes().size() - object.data.size());
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields, (std::vector<DWORD>{0x50616765, 0x42, 3000, 2000, 1728, 2268, 3, 0x1234, position}));
    EXPECT_EQ(read.position, static_cast<LONG>(position + 4)) << "behind the block's header";
}

TEST(IocaReading, StartsAtTheCurrentPosition) {
    ImageObject object;
    object.before = {0x70, 9, 9, 9};
    EXPECT_EQ(readHeader(object.bytes()).result, 0U) << "what looks like a segment first";
    const HeaderRead read = readHeader(object.bytes(), Framing::Ioca, 1);
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields[8], 30U);
    EXPECT_EQ(read, readNaively(object.bytes(), Framing::Ioca, 1));
}

TEST(IocaReading, ReadingSetsNoError) {
    SetTiffError(kErrorBefore);
    readHeader(ImageObject().bytes());
    readHeader({1, 2, 3});
    EXPECT_EQ(TiffError(), kErrorBefore);
}

TEST(IocaReading, AShortNameStandsInTheLowBytes) {
    const auto nameIn = [](const Bytes &segment) {
        const HeaderRead read = readHeader(ImageObject{.segment = segment}.bytes());
        EXPECT_EQ(read.result, 1U);
        return read.fields[0];
    };
    EXPECT_EQ(nameIn({0x70, 0}), 0U);
    EXPECT_EQ(nameIn({0x70, 1, 0xAB}), 0xABU);
    EXPECT_EQ(nameIn({0x70, 2, 0xAB, 0xCD}), 0xABCDU);
    EXPECT_EQ(nameIn({0x70, 3, 0xAB, 0xCD, 0xEF}), 0xABCDEFU);
    EXPECT_EQ(nameIn({0x70, 4, 0xAB, 0xCD, 0xEF, 1}), 0xABCDEF01U);
}

// By design: a longer name is not stepped over.
TEST(IocaReading, ANameOfMoreThanFourBytesMakesTheHeaderUnreadable) {
    const HeaderRead read = readHeader(ImageObject{.segment = {0x70, 5, 'P', 'a', 'g', 'e', 's'}}.bytes());
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.fields, std::vector<DWORD>(9));
    EXPECT_EQ(read.position, 3) << "only the first byte of the name is gone";
    EXPECT_EQ(readHeader(ImageObject{.segment = {0x70, 5}}.bytes()).result, 1U) << "a length without a name";
}

TEST(IocaReading, ElementSizeAndLookUpTableMayBeAbsent) {
    const Bytes element = {0x96, 1, 1};
    const Bytes lookUp = {0x97, 3, 0, 1, 2};
    for (const ImageObject &object :
         {ImageObject{.element = {}, .lookUp = {}}, ImageObject{.element = element, .lookUp = {}},
          ImageObject{.element = {}, .lookUp = lookUp}, ImageObject{.element = element, .lookUp = lookUp},
          ImageObject{.element = {0x96, 0}, .lookUp = {0x97, 0}}}) {
        const HeaderRead read = readHeader(object.bytes());
        EXPECT_EQ(read.result, 1U);
        EXPECT_EQ(read.fields[8], object.bytes().size() - object.data.size());
    }
}

TEST(IocaReading, InTheOtherOrderTheDataAreNotFound) {
    const HeaderRead read = readHeader(ImageObject{.element = {0x97, 1, 0}, .lookUp = {0x96, 1, 1}}.bytes());
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields[8], 0U);
    EXPECT_EQ(read.position, 24) << "behind the 96";
}

TEST(IocaReading, ASegmentWithoutDataHasPosition0) {
    const HeaderRead read = readHeader(ImageObject{.data = {0x93, 0, 0x71, 0}}.bytes());
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields[4], 1728U);
    EXPECT_EQ(read.fields[7], 0U);
    EXPECT_EQ(read.fields[8], 0U);
    EXPECT_EQ(read.position, 27);
}

TEST(IocaReading, ADataFieldOfAnotherKindMakesTheHeaderInvalid) {
    const HeaderRead read = readHeader(ImageObject{.data = {0xFE, 0x93, 0x12, 0x34}}.bytes());
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.fields[7], 0U);
    EXPECT_EQ(read.fields[8], 0U);
}

TEST(IocaReading, LongerFieldsAreSteppedOver) {
    Bytes size = ImageObject().size;
    size[1] = 255;
    size.resize(257, 0xFE);
    Bytes content(257, 0x94);
    content[0] = 0x91;
    content[1] = 255;
    Bytes encoding(257, 0x96);
    encoding[0] = 0x95;
    encoding[1] = 255;
    const ImageObject object = {.content = content, .size = size, .encoding = encoding};
    const HeaderRead read = readHeader(object.bytes());
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields, (std::vector<DWORD>{0, 0x94, 3000, 2000, 1728, 2268, 0x96, 0x1234, 779}));
}

TEST(IocaReading, ShorterFieldsAreRefused) {
    Bytes size = ImageObject().size;
    size[1] = 8;
    EXPECT_EQ(readHeader(ImageObject{.content = {0x91, 0}}.bytes()).result, 0U);
    EXPECT_EQ(readHeader(ImageObject{.size = size}.bytes()).result, 0U);
    EXPECT_EQ(readHeader(ImageObject{.encoding = {0x95, 0}}.bytes()).result, 0U);
    EXPECT_EQ(readHeader(ImageObject{.encoding = {0x95, 1, 1}}.bytes()).result, 1U);
}

TEST(IocaReading, FieldsOfAnotherKindAreRefused) {
    const ImageObject right;
    ImageObject wrong = right;
    for (Bytes ImageObject::*field : {&ImageObject::content, &ImageObject::size, &ImageObject::encoding}) {
        wrong = right;
        ++(wrong.*field)[0];
        EXPECT_EQ(readHeader(wrong.bytes()), readNaively(wrong.bytes()));
        EXPECT_EQ(readHeader(wrong.bytes()).result, 0U);
    }
}

// By design: who looks for a segment in vain has nothing left to close.
TEST(IocaReading, WithoutASegmentTheFileIsClosed) {
    for (const std::size_t size : {0U, 1U, 2048U, 5000U}) {
        const HeaderRead read = readHeader(Bytes(size, 0x91));
        EXPECT_EQ(read.result, 0U);
        EXPECT_EQ(read.position, -1) << size;
        EXPECT_EQ(read.fields, std::vector<DWORD>(9));
    }
}

TEST(IocaReading, EveryOtherFailureLeavesTheFileOpen) {
    EXPECT_EQ(readHeader({0x70}).position, 1);
    EXPECT_EQ(readHeader({0x70, 0, 0x92}).position, 3);
}

TEST(IocaReading, ASegmentIsFoundBehindMegabytesInFewReads) {
    ImageObject object;
    object.before = Bytes(3000001, 0xFE);
    const TempFile file(object.bytes());
    const PlainFile opened(file.path());
    IocaHeader header;
    unsigned long reads = 0;
    {
        const FailNth counted(Call::Read, FailNth::kNever);
        EXPECT_EQ(ReadIOCAHeader(opened.get(), &header), 1U);
        reads = counted.calls();
    }
    EXPECT_EQ(fieldsOf(header)[8], 3000027U);
    EXPECT_EQ(opened.position(), 3000031);
    EXPECT_LT(reads, 2000U);
}

// ---------------------------------------------------------------- reading behind an introducer

TEST(ModcaReading, TheHeaderStandsBehindTheIntroducer) {
    ImageObject object;
    object.before = Bytes{0x70, 0, 1, 2} + kIntroducer + Bytes{0, 0};
    const HeaderRead read = readHeader(object.bytes(), Framing::Modca);
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.fields[8], 35U);
    EXPECT_EQ(read, readNaively(object.bytes(), Framing::Modca));
}

TEST(ModcaReading, BeginningsOfAnIntroducerAreNoObstacle) {
    for (const Bytes &before : {Bytes{0xD3}, Bytes{0xD3, 0xEE}, Bytes{0xD3, 0xD3}, Bytes{0xD3, 0xEE, 0xD3}}) {
        ImageObject object;
        object.before = before + kIntroducer;
        EXPECT_EQ(readHeader(object.bytes(), Framing::Modca).result, 1U);
    }
}

TEST(ModcaReading, TheIntroducerIsLookedForIn2048Bytes) {
    ImageObject object;
    object.before = Bytes(2045, 1) + kIntroducer;
    EXPECT_EQ(readHeader(object.bytes(), Framing::Modca).result, 1U);
    EXPECT_EQ(readHeader(Bytes{1} + object.bytes(), Framing::Modca, 1).result, 1U) << "from the position on";
    object.before = Bytes(2046, 1) + kIntroducer;
    const HeaderRead read = readHeader(object.bytes(), Framing::Modca);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.position, 2048);
    EXPECT_EQ(read.fields, std::vector<DWORD>(9));
}

TEST(ModcaReading, WithoutAnIntroducerTheFileStaysOpen) {
    const HeaderRead read = readHeader(ImageObject().bytes(), Framing::Modca);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.position, static_cast<LONG>(ImageObject().bytes().size()));
}

TEST(ModcaReading, WithoutASegmentBehindItTheFileIsClosed) {
    EXPECT_EQ(readHeader(Bytes{0x70} + kIntroducer + Bytes(3000, 1), Framing::Modca).position, -1);
}

// ---------------------------------------------------------------- whole pages

class IocaPage : public ::testing::TestWithParam<Framing> {
protected:
    static constexpr DWORD kWidth = 1000;
    static constexpr DWORD kHeight = 700;
    // The caller's own fields before a MO:DCA header.
    static constexpr std::size_t kOwnFields = 30;

    static Bytes randomPage() {
        Random random(11);
        return packRows(randomRows(random, kWidth, kHeight));
    }

    // Writes a page with all that is around it.
    static void wrap(const char *path, const Bytes &pixels) {
        const PlainFile file(path, kNewFile);
        const IocaHeader header = pageHeader(kWidth, kHeight);
        LineSource source;
        source.lineBytes = kWidth / 8;
        source.data = pixels;
        const bool modca = GetParam() == Framing::Modca;
        if (modca) {
            const Bytes own(kOwnFields, 0x5A);
            _lwrite(file.get(), reinterpret_cast<const char *>(own.data()), kOwnFields);
        }
        EXPECT_EQ(modca ? WriteMODCAHeader(file.get(), &header) : WriteIOCAHeader(file.get(), &header), 1U);
        EXPECT_EQ(EncodeMMRImage(file.get(), kWidth, kHeight, 0, source.userValue(), LineSource::supply), 1U);
        EXPECT_EQ(modca ? WriteMODCATail(file.get()) : WriteIOCATail(file.get()), 1U);
    }
};

TEST_P(IocaPage, UnwrapsToThePixelsThatWereWrapped) {
    const Bytes pixels = randomPage();
    const TempFile file;
    wrap(file.path(), pixels);
    const PlainFile opened(file.path());
    IocaHeader header;
    ASSERT_EQ(callReader(GetParam(), opened.get(), &header), 1U);
    const std::vector<DWORD> fields = fieldsOf(header);
    EXPECT_EQ(fields[0], 0U);
    EXPECT_EQ(fields[1], 0xFFU);
    EXPECT_EQ((std::vector<DWORD>(fields.begin() + 2, fields.begin() + 7)),
              (std::vector<DWORD>{3000, 2000, kWidth, kHeight, 1}));
    EXPECT_EQ(fields[7], 32767U) << "the page takes more than a block";
    EXPECT_EQ(fields[8], GetParam() == Framing::Modca ? kOwnFields + 29 : 26);
    LineLog log;
    EXPECT_EQ(decodeMmrInto(log, opened.get(), {fields[8], fields[4], fields[5]}), kDecoded);
    EXPECT_TRUE(log.data == pixels);
}

TEST_P(IocaPage, EndsWithItsTail) {
    const TempFile file;
    wrap(file.path(), randomPage());
    const Bytes bytes = readFile(file.path()).value_or(Bytes());
    const std::size_t ending = GetParam() == Framing::Modca ? 7 : 4;
    ASSERT_GT(bytes.size(), 100U);
    const Bytes tail(bytes.end() - static_cast<std::ptrdiff_t>(ending), bytes.end());
    EXPECT_EQ(Bytes(tail.begin(), tail.begin() + 4), (Bytes{0x93, 0, 0x71, 0}));
    if (GetParam() == Framing::Modca) {
        EXPECT_EQ(Bytes(tail.begin() + 4, tail.end()), (Bytes{0xD3, 0xA9, 0xC7}));
        EXPECT_EQ(bytes[28] * 256U + bytes[29], (bytes.size() - 7 - 28) & 0xFFFFU);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 28), Bytes(28, 0x5A)) << "the caller's own fields";
    }
}

std::string framingName(const ::testing::TestParamInfo<Framing> &tested) {
    return tested.param == Framing::Ioca ? "Ioca" : "Modca";
}

INSTANTIATE_TEST_SUITE_P(Both, IocaPage, ::testing::Values(Framing::Ioca, Framing::Modca), framingName);

} // namespace
