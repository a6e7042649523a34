#pragma once

#include "standin/Exchange.h"

#include <chrono>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo::standin {

/// What can go wrong with an answer.
enum class FailureKind {
    delayOnly,     ///< the right answer, late
    status,        ///< another status, with an error object or a body of the test's
    unauthorized,  ///< 401 with a WWW-Authenticate header
    redirect,      ///< 302 with a Location
    notJson,       ///< 200 with a body that is no JSON
    wrongShape,    ///< 200 with JSON of another shape
    truncatedJson, ///< 200 with the first half of the right body, as a whole HTTP message
    body,          ///< 200 with a body of the test's
    replyText,     ///< messages alone: the right form around a text of the test's
    drop,          ///< the connection is closed before any byte
    cut,           ///< the connection is closed in the middle of the body
    stall,         ///< nothing is ever sent, the connection stays open
};

/// A failure, made by the functions below. Every kind can be late.
struct Failure {
    FailureKind kind = FailureKind::delayOnly;
    std::chrono::milliseconds delay{0};
    int statusCode = 0;
    std::optional<std::string> text; ///< the body, the reply's text or the Location

    static Failure late(std::chrono::milliseconds delay) { return {FailureKind::delayOnly, delay, 0, {}}; }
    static Failure status(int code, std::optional<std::string> body = {}) {
        return {FailureKind::status, {}, code, std::move(body)};
    }
    static Failure unauthorized() { return {FailureKind::unauthorized, {}, 401, {}}; }
    static Failure redirect(std::string location) { return {FailureKind::redirect, {}, 302, std::move(location)}; }
    static Failure notJson() { return {FailureKind::notJson, {}, 0, {}}; }
    static Failure wrongShape() { return {FailureKind::wrongShape, {}, 0, {}}; }
    static Failure truncatedJson() { return {FailureKind::truncatedJson, {}, 0, {}}; }
    static Failure body(std::string text) { return {FailureKind::body, {}, 0, std::move(text)}; }
    static Failure reply(std::string text) { return {FailureKind::replyText, {}, 0, std::move(text)}; }
    static Failure drop() { return {FailureKind::drop, {}, 0, {}}; }
    static Failure cut() { return {FailureKind::cut, {}, 0, {}}; }
    static Failure stall() { return {FailureKind::stall, {}, 0, {}}; }

    /// The same failure, late.
    [[nodiscard]] Failure after(std::chrono::milliseconds wait) const {
        Failure copy = *this;
        copy.delay = wait;
        return copy;
    }
};

/// Which requests of a service fail, counted from the moment the failure is ordered.
struct Occasion {
    static constexpr int always = std::numeric_limits<int>::max();

    int after = 0;      ///< so many are answered well first
    int count = always; ///< so many fail then

    static Occasion next(int requests) { return {0, requests}; }
    /// Request number `number` alone, counted from 1.
    static Occasion only(int number) { return {number - 1, 1}; }
    /// Request number `number` and all behind it, counted from 1.
    static Occasion from(int number) { return {number - 1, always}; }
};

/// A failure ordered in text.
struct FailureOrder {
    Service service = Service::none;
    Failure failure;
    Occasion occasion;
};

/// Reads
///
///     SERVICE ":" KIND { "," OPTION }
///     SERVICE  transcription | messages | me | version | upload | process | jobs | archive | page
///     KIND     status=N | unauthorized | redirect=URL | notjson | shape | truncated | drop | cut | stall | delay=MS
///              | body=TEXT | reply=TEXT (messages alone)
///     OPTION   after=N | count=N | delay=MS | body=TEXT (with status)
///
/// TEXT runs to the end, commas included, so it comes last. Nothing if the text is not of this form.
[[nodiscard]] std::optional<FailureOrder> parseFailureOrder(std::string_view text);

} // namespace zuvo::standin
