#include "account/APIError.h"

#include "account/CloudProcessorError.h"

#include <gmock/gmock.h>

using namespace zuvo;

TEST(APIError, eachKindHasItsWords) {
    EXPECT_EQ(APIError::httpError(503, "busy").errorDescription(), "Server error 503: busy");
    EXPECT_EQ(APIError::httpError(404, "").errorDescription(), "Server error 404: ");
    EXPECT_EQ(APIError::decodingError("plan is missing").errorDescription(),
              "Failed to parse response: plan is missing");
    EXPECT_EQ(APIError::networkError("Connection refused").errorDescription(), "Network error: Connection refused");
    EXPECT_EQ(APIError::invalidURL().errorDescription(), "Invalid URL");
    EXPECT_EQ(APIError::invalidResponse().errorDescription(), "Invalid server response");
}

TEST(APIError, theStatusCodeIsThatOfAnHttpErrorAlone) {
    EXPECT_EQ(APIError::httpError(401, "").statusCode(), 401);
    EXPECT_EQ(APIError::networkError("401").statusCode(), 0);
}

TEST(APIError, whatItSaysAsAnExceptionIsTheSame) {
    EXPECT_STREQ(APIError::httpError(401, "no").what(), "Server error 401: no");
}

TEST(CloudProcessorError, eachKindHasItsWords) {
    EXPECT_EQ(CloudProcessorError::uploadFailed("HTTP 500: x").errorDescription(), "Upload failed: HTTP 500: x");
    EXPECT_EQ(CloudProcessorError::processingFailed("y").errorDescription(), "Processing failed: y");
    EXPECT_EQ(CloudProcessorError::pollingTimeout().errorDescription(), "Processing timeout - please try again");
    EXPECT_EQ(CloudProcessorError::invalidResults().errorDescription(), "Invalid results received from server");
    EXPECT_STREQ(CloudProcessorError::processingFailed("y").what(), "Processing failed: y");
}
