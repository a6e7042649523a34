#include "standin/MultipartReader.h"

#include "base/Text.h"

#include <algorithm>

namespace zuvo::standin {
namespace {

std::string lowerAscii(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

/// The value of `key` in a header such as `form-data; name="file"; filename="a; b.wav"`; quotes protect semicolons.
std::optional<std::string> headerParameter(std::string_view header, std::string_view key) {
    bool quoted = false;
    std::size_t begin = 0;
    for (std::size_t at = 0; at <= header.size(); ++at) {
        if (at < header.size() && header[at] == '"')
            quoted = !quoted;
        if (at < header.size() && (header[at] != ';' || quoted))
            continue;
        const std::string piece = trimBlanksAndTabs(header.substr(begin, at - begin));
        begin = at + 1;
        const std::size_t equals = piece.find('=');
        if (equals == std::string::npos || lowerAscii(std::string_view(piece).substr(0, equals)) != key)
            continue;
        std::string value = piece.substr(equals + 1);
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        return value;
    }
    return std::nullopt;
}

std::optional<FormPart> readPart(std::string_view headers, std::string_view data) {
    FormPart part;
    part.data = data;
    bool named = false;
    while (!headers.empty()) {
        const std::size_t end = std::min(headers.find("\r\n"), headers.size());
        const std::string_view line = headers.substr(0, end);
        headers.remove_prefix(std::min(end + 2, headers.size()));
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            return std::nullopt;
        const std::string key = lowerAscii(line.substr(0, colon));
        const std::string value = trimBlanksAndTabs(line.substr(colon + 1));
        if (key == "content-disposition") {
            const auto name = headerParameter(value, "name");
            if (!name || lowerAscii(value).rfind("form-data", 0) != 0)
                return std::nullopt;
            part.name = *name;
            part.fileName = headerParameter(value, "filename");
            named = true;
        } else if (key == "content-type") {
            part.contentType = value;
        }
    }
    return named ? std::optional(part) : std::nullopt;
}

} // namespace

std::optional<std::vector<FormPart>> readMultipart(std::string_view contentType, std::string_view body) {
    const auto boundary = headerParameter(contentType, "boundary");
    if (!boundary || boundary->empty() || lowerAscii(contentType).rfind("multipart/form-data", 0) != 0)
        return std::nullopt;
    const std::string opening = "--" + *boundary;
    const std::string separator = "\r\n" + opening;
    if (body.substr(0, opening.size()) != opening)
        return std::nullopt;
    std::vector<FormPart> parts;
    std::size_t at = opening.size();
    while (body.substr(at, 2) != "--") {
        if (body.substr(at, 2) != "\r\n")
            return std::nullopt;
        at += 2;
        const std::size_t headersEnd = body.find("\r\n\r\n", at);
        if (headersEnd == std::string_view::npos)
            return std::nullopt;
        const std::size_t dataBegin = headersEnd + 4;
        const std::size_t dataEnd = body.find(separator, dataBegin);
        if (dataEnd == std::string_view::npos)
            return std::nullopt;
        const auto part = readPart(body.substr(at, headersEnd - at), body.substr(dataBegin, dataEnd - dataBegin));
        if (!part)
            return std::nullopt;
        parts.push_back(*part);
        at = dataEnd + separator.size();
    }
    return parts;
}

} // namespace zuvo::standin
