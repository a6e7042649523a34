#pragma once

#include <exception>
#include <string>

namespace zuvo {

/// Why the service gave no story, in words for the user.
class CloudProcessorError final : public std::exception {
public:
    enum class Kind {
        uploadFailed,     ///< the file cannot be read, or its upload failed
        processingFailed, ///< the service refused the job or told of its failure
        pollingTimeout,   ///< the job had not ended by the last question
        invalidResults,   ///< the job is complete and has no story
    };

    static CloudProcessorError uploadFailed(const std::string& text) {
        return {Kind::uploadFailed, "Upload failed: " + text};
    }
    static CloudProcessorError processingFailed(const std::string& text) {
        return {Kind::processingFailed, "Processing failed: " + text};
    }
    static CloudProcessorError pollingTimeout() {
        return {Kind::pollingTimeout, "Processing timeout - please try again"};
    }
    static CloudProcessorError invalidResults() {
        return {Kind::invalidResults, "Invalid results received from server"};
    }

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// The words for the user, the same as `what()`.
    [[nodiscard]] const std::string& errorDescription() const { return m_description; }
    [[nodiscard]] const char* what() const noexcept override { return m_description.c_str(); }

private:
    CloudProcessorError(Kind kind, std::string description) : m_kind(kind), m_description(std::move(description)) {}

    Kind m_kind;
    std::string m_description;
};

} // namespace zuvo
