#include "endtoend/Secrets.h"

#include <QByteArray>
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zuvo::endtoend {

namespace {

namespace fs = std::filesystem;

std::string utf16(const std::string& text) {
    std::string wide;
    for (const char character : text)
        wide += {character, '\0'};
    return wide;
}

/// The characters of Base64 that depend on `text` alone, wherever it stands in what was encoded.
std::string base64Within(const std::string& text, std::size_t alignment) {
    constexpr std::size_t group = 3;
    const std::size_t skipped = (group - alignment) % group;
    const std::size_t whole = (text.size() - skipped) / group * group;
    return QByteArray::fromStdString(text.substr(skipped, whole)).toBase64().toStdString();
}

std::string bytesOfFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

std::vector<std::string> tracesOfSecrets() {
    const std::string part = secretPart;
    const auto hexadecimal = QByteArray::fromStdString(part).toHex();
    return {part,
            utf16(part),
            hexadecimal.toStdString(),
            hexadecimal.toUpper().toStdString(),
            base64Within(part, 0),
            base64Within(part, 1),
            base64Within(part, 2),
            {part.rbegin(), part.rend()}};
}

bool holdsSecret(const std::string& bytes) {
    static const auto traces = tracesOfSecrets();
    return std::any_of(traces.begin(), traces.end(),
                       [&bytes](const std::string& trace) { return bytes.find(trace) != std::string::npos; });
}

std::vector<std::string> secretsBelow(const std::string& folder, const std::vector<std::string>& known) {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto path = entry.path().string();
        if (std::find(known.begin(), known.end(), path) != known.end())
            continue;
        std::string content;
        if (entry.is_symlink())
            content = fs::read_symlink(entry.path()).string();
        else if (entry.is_regular_file())
            content = bytesOfFile(entry.path());
        if (holdsSecret(content) || holdsSecret(entry.path().filename().string()))
            found.push_back(path);
    }
    return found;
}

} // namespace zuvo::endtoend
