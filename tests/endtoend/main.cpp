#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <string>
#include <string_view>

namespace {

/// True if CMake runs every suite that was compiled in: the suites are run one by one, each in a process of its own,
/// so that a suite can share one costly mine.
bool everySuiteIsRun() {
    const std::string listed = std::string(",") + ZUVO_ENDTOEND_SUITES + ",";
    const auto& tests = *testing::UnitTest::GetInstance();
    bool complete = true;
    for (int i = 0; i < tests.total_test_suite_count(); ++i) {
        const std::string name = tests.GetTestSuite(i)->name();
        if (listed.find("," + name + ",") != std::string::npos)
            continue;
        std::fprintf(stderr, "The suite %s stands in no ctest of tests/endtoend/CMakeLists.txt\n", name.c_str());
        complete = false;
    }
    return complete;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    testing::InitGoogleMock(&argumentCount, arguments);
    if (!everySuiteIsRun())
        return 1;
    return RUN_ALL_TESTS();
}
