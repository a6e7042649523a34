#pragma once

#include "base/Json.h"

#include <concepts>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace zuvo {

// Strict JSON forms of records. A record names its fields once, in declaration order:
//
//     struct Act {
//         std::string name;
//         std::vector<std::int64_t> segments;
//         static constexpr auto fields() { return std::tuple(Field{"name", &Act::name}, Field{"segments",
//         &Act::segments}); }
//     };
//
// and decodeRecord<Act>(json) and encodeRecord(act) follow. Reading: a double takes any JSON number, an integer a
// number without a fraction, a boolean only true or false; a field that is no std::optional fails the whole record if
// its key is absent or null; unknown keys are passed over. Writing: keys in the order of the list, an empty optional
// leaves its key out.

template <class Record, class Member>
struct Field {
    const char* key;
    Member Record::*member;
};
template <class Record, class Member>
Field(const char*, Member Record::*) -> Field<Record, Member>;

template <class Type>
concept FieldRecord = requires {
    Type::fields();
};

/// The outcome of strict decoding: a value, or what was wrong and where ("segments[2].translation is missing").
template <class Type>
struct Decoded {
    std::optional<Type> value;
    std::string failure;
};

namespace fields_detail {

template <class Type>
struct IsOptional : std::false_type {};
template <class Type>
struct IsOptional<std::optional<Type>> : std::true_type {};
template <class Type>
struct IsList : std::false_type {};
template <class Type>
struct IsList<std::vector<Type>> : std::true_type {};

// Each reader gives an empty text for success, else what was wrong. `where` is the place in the tree.

inline std::string wrong(const std::string& where, const char* wanted) {
    return (where.empty() ? std::string("the top level") : where) + " is not " + wanted;
}

template <FieldRecord Record>
std::string read(const Json& json, Record& record, const std::string& where);

inline std::string read(const Json& json, double& value, const std::string& where) {
    if (!json.is_number())
        return wrong(where, "a number");
    value = json.get<double>();
    return {};
}

inline std::string read(const Json& json, std::int64_t& value, const std::string& where) {
    const auto number = asInteger(json);
    if (!number)
        return wrong(where, "an integer");
    value = *number;
    return {};
}

inline std::string read(const Json& json, bool& value, const std::string& where) {
    if (!json.is_boolean())
        return wrong(where, "true or false");
    value = json.get<bool>();
    return {};
}

inline std::string read(const Json& json, std::string& value, const std::string& where) {
    if (!json.is_string())
        return wrong(where, "a text");
    value = json.get<std::string>();
    return {};
}

template <class Element>
std::string read(const Json& json, std::vector<Element>& list, const std::string& where) {
    if (!json.is_array())
        return wrong(where, "a list");
    list.clear();
    list.reserve(json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        Element element{};
        auto failure = read(json[i], element, where + "[" + std::to_string(i) + "]");
        if (!failure.empty())
            return failure;
        list.push_back(std::move(element));
    }
    return {};
}

template <class Record, class Member>
std::string readField(const Json& object, Record& record, Field<Record, Member> field, const std::string& where) {
    const auto place = where.empty() ? std::string(field.key) : where + "." + field.key;
    const auto found = object.find(field.key);
    const bool absent = found == object.end() || found->is_null();
    if constexpr (IsOptional<Member>::value) {
        record.*(field.member) = std::nullopt;
        if (absent)
            return {};
        typename Member::value_type value{};
        auto failure = read(*found, value, place);
        if (failure.empty())
            record.*(field.member) = std::move(value);
        return failure;
    } else {
        if (absent)
            return place + " is missing";
        return read(*found, record.*(field.member), place);
    }
}

template <FieldRecord Record>
std::string read(const Json& json, Record& record, const std::string& where) {
    if (!json.is_object())
        return wrong(where, "an object");
    std::string failure;
    std::apply(
        [&](auto... field) { (void)((failure = readField(json, record, field, where), failure.empty()) && ...); },
        Record::fields());
    return failure;
}

template <class Type>
OrderedJson write(const Type& value) {
    if constexpr (FieldRecord<Type>) {
        auto object = OrderedJson::object();
        const auto writeField = [&](auto field) {
            const auto& member = value.*(field.member);
            if constexpr (IsOptional<std::remove_cvref_t<decltype(member)>>::value) {
                if (member)
                    object[field.key] = write(*member);
            } else {
                object[field.key] = write(member);
            }
        };
        std::apply([&](auto... field) { (writeField(field), ...); }, Type::fields());
        return object;
    } else if constexpr (IsList<Type>::value) {
        auto list = OrderedJson::array();
        for (const auto& element : value)
            list.push_back(write(element));
        return list;
    } else {
        return OrderedJson(value);
    }
}

} // namespace fields_detail

/// The record in `json`, or what was wrong with it.
template <FieldRecord Record>
[[nodiscard]] Decoded<Record> decodeRecord(const Json& json) {
    Decoded<Record> decoded;
    Record record{};
    decoded.failure = fields_detail::read(json, record, {});
    if (decoded.failure.empty())
        decoded.value = std::move(record);
    return decoded;
}

/// The record in a foreign text, or what was wrong with it.
template <FieldRecord Record>
[[nodiscard]] Decoded<Record> decodeRecordText(std::string_view text) {
    const auto json = parseForeignJson(text);
    if (!json)
        return {std::nullopt, "the text is not valid JSON"};
    return decodeRecord<Record>(*json);
}

/// The record (or a list of records) with its keys in declaration order.
template <class Type>
[[nodiscard]] OrderedJson encodeRecord(const Type& value) {
    return fields_detail::write(value);
}

} // namespace zuvo
