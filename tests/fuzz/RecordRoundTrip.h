#pragma once

#include "Fuzzing.h"
#include "base/Fields.h"

namespace zuvo::fuzzing {

/// What decodes as this record must encode, and decode again to the same text.
template <class Record>
void roundTrip(const Json& json) {
    const auto first = decodeRecord<Record>(json);
    require(first.value.has_value() == first.failure.empty());
    if (!first.value)
        return;
    const auto text = compactText(encodeRecord(*first.value));
    require(text.has_value());
    const auto second = decodeRecordText<Record>(*text);
    require(second.value.has_value());
    require(compactText(encodeRecord(*second.value)) == text);
}

} // namespace zuvo::fuzzing
