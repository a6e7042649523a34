#include "standin/Exchange.h"

#include <algorithm>

namespace zuvo::standin {
namespace {

bool sameName(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

} // namespace

std::string RecordedRequest::header(std::string_view name) const {
    for (const auto& [key, value] : headers)
        if (sameName(key, name))
            return value;
    return {};
}

bool RecordedRequest::hasHeader(std::string_view name) const {
    return std::any_of(headers.begin(), headers.end(), [&](const auto& entry) { return sameName(entry.first, name); });
}

} // namespace zuvo::standin
