#include "standin/Failure.h"

#include <charconv>
#include <map>

namespace zuvo::standin {
namespace {

constexpr int largestNumber = 86'400'000; // a day in milliseconds; larger ones are typing errors

std::optional<int> number(std::string_view text) {
    int value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && stop == text.data() + text.size();
    return whole && value >= 0 && value <= largestNumber ? std::optional(value) : std::nullopt;
}

/// The next `key` or `key=value`, taken off the text. The values of body and reply run to the end.
std::pair<std::string_view, std::optional<std::string_view>> takeItem(std::string_view& text) {
    const bool toTheEnd = text.rfind("body=", 0) == 0 || text.rfind("reply=", 0) == 0;
    const std::size_t comma = toTheEnd ? std::string_view::npos : text.find(',');
    const std::string_view item = text.substr(0, comma);
    text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos)
        return {item, std::nullopt};
    return {item.substr(0, equals), item.substr(equals + 1)};
}

std::optional<Failure> readKind(std::string_view key, const std::optional<std::string_view>& value) {
    static const std::map<std::string_view, Failure> plain{
        {"unauthorized", Failure::unauthorized()},
        {"notjson", Failure::notJson()},
        {"shape", Failure::wrongShape()},
        {"truncated", Failure::truncatedJson()},
        {"drop", Failure::drop()},
        {"cut", Failure::cut()},
        {"stall", Failure::stall()},
    };
    if (const auto found = plain.find(key); found != plain.end())
        return value ? std::nullopt : std::optional(found->second);
    if (!value)
        return std::nullopt;
    if (key == "redirect")
        return Failure::redirect(std::string(*value));
    if (key == "body")
        return Failure::body(std::string(*value));
    if (key == "reply")
        return Failure::reply(std::string(*value));
    const auto figure = number(*value);
    if (key == "status" && figure && *figure >= 200 && *figure <= 599)
        return Failure::status(*figure);
    if (key == "delay" && figure)
        return Failure::late(std::chrono::milliseconds(*figure));
    return std::nullopt;
}

bool readOption(std::string_view key, const std::optional<std::string_view>& value, FailureOrder& order) {
    if (!value)
        return false;
    if (key == "body" && order.failure.kind == FailureKind::status) {
        order.failure.text = std::string(*value);
        return true;
    }
    const auto figure = number(*value);
    if (!figure)
        return false;
    if (key == "after")
        order.occasion.after = *figure;
    else if (key == "count")
        order.occasion.count = *figure;
    else if (key == "delay")
        order.failure.delay = std::chrono::milliseconds(*figure);
    else
        return false;
    return true;
}

} // namespace

std::optional<FailureOrder> parseFailureOrder(std::string_view text) {
    static const std::map<std::string_view, Service> services{
        {"transcription", Service::transcription},
        {"messages", Service::messages},
        {"me", Service::me},
        {"version", Service::version},
        {"upload", Service::upload},
        {"process", Service::process},
        {"jobs", Service::jobs},
        {"archive", Service::archive},
        {"page", Service::page},
    };
    const std::size_t colon = text.find(':');
    const auto service = services.find(text.substr(0, colon));
    if (colon == std::string_view::npos || service == services.end())
        return std::nullopt;
    text.remove_prefix(colon + 1);
    const auto [key, value] = takeItem(text);
    const auto failure = readKind(key, value);
    if (!failure || (failure->kind == FailureKind::replyText && service->second != Service::messages))
        return std::nullopt;
    FailureOrder order{service->second, *failure, {}};
    while (!text.empty()) {
        const auto [option, setting] = takeItem(text);
        if (!readOption(option, setting, order))
            return std::nullopt;
    }
    return order;
}

} // namespace zuvo::standin
