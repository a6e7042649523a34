#pragma once

#include "base/Fields.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zuvo {

/// Who is signed in, as the account service tells it.
struct UserInfo {
    std::string id;
    std::string name;
    std::string email;
    std::int64_t credits = 0; ///< shown alone: nothing is limited by them
    std::string plan;         ///< the service's own name for it

    static constexpr auto fields() {
        using S = UserInfo;
        return std::tuple(Field{"id", &S::id}, Field{"name", &S::name}, Field{"email", &S::email},
                          Field{"credits", &S::credits}, Field{"plan", &S::plan});
    }
};

/// The newest version of the Resolve plugin that the service offers.
struct VersionInfo {
    std::string version;
    std::optional<std::string> downloadURL;  ///< of a ZIP archive; not trusted
    std::optional<std::string> releaseNotes; ///< plain text

    static constexpr auto fields() {
        using S = VersionInfo;
        return std::tuple(Field{"version", &S::version}, Field{"download_url", &S::downloadURL},
                          Field{"release_notes", &S::releaseNotes});
    }
};

/// Part of the service's vocabulary; no operation of this program reads it.
struct TokenValidation {
    bool valid = false;
    std::optional<std::string> token;

    static constexpr auto fields() {
        using S = TokenValidation;
        return std::tuple(Field{"valid", &S::valid}, Field{"token", &S::token});
    }
};

/// What token.json holds.
struct TokenFile {
    std::string token;
    std::optional<std::string> email;
    std::optional<std::string> name;

    static constexpr auto fields() {
        using S = TokenFile;
        return std::tuple(Field{"token", &S::token}, Field{"email", &S::email}, Field{"name", &S::name});
    }
};

} // namespace zuvo
