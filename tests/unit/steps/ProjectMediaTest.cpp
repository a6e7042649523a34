#include "steps/ProjectMedia.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

SavedProject projectOf(std::vector<std::string> paths) {
    SavedProject project;
    project.timeline = "talk";
    project.mediaPaths = std::move(paths);
    return project;
}

TEST(ProjectMedia, absolutePathsStayAsTheyAre) {
    const auto used = withAbsoluteMedia(projectOf({"/a/b.wav", "/a/../c.mov", "/http://x/d.wav"}));
    EXPECT_THAT(used.project.mediaPaths, ElementsAre("/a/b.wav", "/a/../c.mov", "/http://x/d.wav"));
    EXPECT_THAT(used.refused, IsEmpty());
    EXPECT_EQ(used.project.timeline, "talk");
    EXPECT_EQ(refusedMediaMessage(used.refused), "");
}

TEST(ProjectMedia, whatAToolCouldTakeForSomethingElseIsAMissingFileInItsPlace) {
    const std::vector<std::string> hostile = {"http://10.0.0.1/a.wav", "-version",  "pipe:0", "concat:/a|/b",
                                              "footage/a.wav",         "~/b.mov",   "",       " /c.wav",
                                              "file:///etc/passwd",    "-i\n/x.wav"};
    auto paths = hostile;
    paths.insert(paths.begin() + 1, "/real/first.wav");
    const auto used = withAbsoluteMedia(projectOf(paths));
    EXPECT_EQ(used.refused, hostile);
    EXPECT_THAT(used.project.mediaPaths,
                ElementsAre("/path/to/a.wav", "/real/first.wav", "/path/to/-version", "/path/to/pipe:0", "/path/to/b",
                            "/path/to/a.wav", "/path/to/b.mov", "/path/to/", "/path/to/c.wav", "/path/to/passwd",
                            "/path/to/x.wav"));
}

TEST(ProjectMedia, theMessageNamesThePathsOnOneLine) {
    EXPECT_EQ(refusedMediaMessage({"http://h/a.wav"}),
              "Media of this project count as missing, since this path is not absolute: \"http://h/a.wav\"");
    EXPECT_EQ(refusedMediaMessage({"a\nb", "-c"}),
              "Media of this project count as missing, since these paths are not absolute: \"a\uFFFDb\", \"-c\"");
    const auto many = refusedMediaMessage({"a", "b", "c", "d", std::string(100'000, 'e')});
    EXPECT_THAT(many, HasSubstr("\"a\", \"b\", \"c\" and 2 more"));
    EXPECT_THAT(many, Not(HasSubstr("eee")));
    EXPECT_LT(refusedMediaMessage({std::string(100'000, 'e')}).size(), 300U);
}

} // namespace
} // namespace zuvo
