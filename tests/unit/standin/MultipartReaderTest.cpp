#include "standin/MultipartReader.h"

#include <gmock/gmock.h>

using namespace zuvo::standin;

namespace {

constexpr std::string_view type = "multipart/form-data; boundary=XYZ";

TEST(MultipartReader, partsComeInOrderWithTheirNamesAndBytes) {
    const std::string body = "--XYZ\r\nContent-Disposition: form-data; name=\"model\"\r\n\r\nwhisper-1\r\n"
                             "--XYZ\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a; b.wav\"\r\n"
                             "Content-Type: audio/wav\r\n\r\nRI\r\nFF\r\n--XYZ--\r\n";
    const auto parts = readMultipart(type, body);
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 2U);
    EXPECT_EQ((*parts)[0].name, "model");
    EXPECT_EQ((*parts)[0].data, "whisper-1");
    EXPECT_FALSE((*parts)[0].fileName);
    EXPECT_EQ((*parts)[1].name, "file");
    EXPECT_EQ((*parts)[1].fileName, "a; b.wav");
    EXPECT_EQ((*parts)[1].contentType, "audio/wav");
    EXPECT_EQ((*parts)[1].data, "RI\r\nFF");
}

TEST(MultipartReader, headerNamesAndTheBoundaryKeyAreReadInAnyCase) {
    const std::string body = "--q\r\ncontent-disposition: Form-Data; NAME=\"a\"\r\n\r\n1\r\n--q--";
    const auto parts = readMultipart("Multipart/Form-Data; Boundary=\"q\"", body);
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 1U);
    EXPECT_EQ((*parts)[0].data, "1");
}

TEST(MultipartReader, anEmptyFieldIsAPart) {
    const auto parts = readMultipart(type, "--XYZ\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n\r\n--XYZ--");
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 1U);
    EXPECT_EQ((*parts)[0].data, "");
}

struct BadForm {
    const char* name;
    const char* contentType;
    const char* body;
};

class MultipartReaderRefuses : public testing::TestWithParam<BadForm> {};

TEST_P(MultipartReaderRefuses, whatIsNoWholeForm) {
    EXPECT_FALSE(readMultipart(GetParam().contentType, GetParam().body));
}

INSTANTIATE_TEST_SUITE_P(Forms, MultipartReaderRefuses,
                         testing::Values(BadForm{"noBoundary", "multipart/form-data", "--XYZ--"},
                                         BadForm{"otherType", "text/plain; boundary=XYZ", "--XYZ--"},
                                         BadForm{"empty", "multipart/form-data; boundary=XYZ", ""},
                                         BadForm{"otherBoundary", "multipart/form-data; boundary=XYZ", "--ABC--\r\n"},
                                         BadForm{"cutInTheHeaders", "multipart/form-data; boundary=XYZ",
                                                 "--XYZ\r\nContent-Disposition: form-da"},
                                         BadForm{"cutInTheData", "multipart/form-data; boundary=XYZ",
                                                 "--XYZ\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n12345"},
                                         BadForm{
                                             "noClosingBoundary", "multipart/form-data; boundary=XYZ",
                                             "--XYZ\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n--XYZ"},
                                         BadForm{"noName", "multipart/form-data; boundary=XYZ",
                                                 "--XYZ\r\nContent-Disposition: form-data\r\n\r\n1\r\n--XYZ--"},
                                         BadForm{"headerWithoutColon", "multipart/form-data; boundary=XYZ",
                                                 "--XYZ\r\nnonsense\r\n\r\n1\r\n--XYZ--"}),
                         [](const auto& form) { return std::string(form.param.name); });

} // namespace
