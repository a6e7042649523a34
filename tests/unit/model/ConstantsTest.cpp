#include "model/Constants.h"

#include <gmock/gmock.h>
#include <string>

namespace zuvo {
namespace {

TEST(Constants, theApplicationSaysWhichVersionItIs) {
    EXPECT_STREQ(Constants::App::version, "1.0.0");
    EXPECT_STREQ(Constants::App::pluginVersion, "0.1.0-beta");
    EXPECT_STREQ(Constants::App::bundleIdentifier, "com.tarnwick.zuvo-manager");
    EXPECT_STREQ(Constants::App::minResolveVersion, "18");
}

TEST(Constants, theThreeAddressesOfTheServiceAreOnOneHost) {
    const std::string host = std::string("https://") + ZUVO_SERVICE_HOST;
    EXPECT_EQ(Constants::API::baseURL, host + "/api/v1");
    EXPECT_EQ(Constants::API::authURL, host + "/plugin-auth?callback=zuvo-manager%3A%2F%2Fcallback");
    EXPECT_EQ(Constants::API::billingURL, host + "/billing");
}

} // namespace
} // namespace zuvo
