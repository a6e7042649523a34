#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zuvo::standin {

/// The services that are played, those behind `messages` being parts of the account service that fail one by one.
/// `none` is a path that belongs to no service.
enum class Service {
    none,
    transcription,
    messages,
    me,
    version,
    upload,
    process,
    jobs,    ///< the polls of a job
    archive, ///< the plugin's download
    page,    ///< what the browser shows: sign-in and billing
};

using Headers = std::vector<std::pair<std::string, std::string>>;

/// A request as it came over the wire.
struct RecordedRequest {
    Service service = Service::none;
    std::string method; ///< upper case
    std::string path;   ///< with the query, if there is one
    Headers headers;
    std::string body;
    int connection = 0; ///< which connection brought it, counted from 1

    /// The first header of that name, whatever its case; empty if there is none.
    [[nodiscard]] std::string header(std::string_view name) const;
    [[nodiscard]] bool hasHeader(std::string_view name) const;
};

/// What goes back. Content-Length is added when it is sent.
struct Answer {
    int status = 200;
    std::string body;
    Headers headers = {{"Content-Type", "application/json"}};
};

} // namespace zuvo::standin
