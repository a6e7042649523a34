#pragma once

#include "base/Fields.h"
#include "model/Account.h"
#include "model/AuditReport.h"
#include "model/CloudJobs.h"
#include "model/Media.h"
#include "model/MiningResults.h"
#include "model/Stores.h"
#include "model/Style.h"
#include "model/Transcript.h"

#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace zuvo::tests {

/// One record with a JSON form: a text that fills every key, the keys that may be absent, and the decoder under test.
struct RecordCase {
    const char* name;
    const char* text; ///< compact, every key present, in declaration order
    std::vector<std::string> keys;
    std::set<std::string> optionalKeys;
    /// Strict decoding; the encoded form of what was decoded, or nothing with the failure in the second text.
    std::function<std::optional<std::string>(std::string_view, std::string&)> recode;
};

inline void PrintTo(const RecordCase& record, std::ostream* out) {
    *out << record.name;
}

template <class Record>
std::optional<std::string> recodeAs(std::string_view text, std::string& failure) {
    const auto decoded = decodeRecordText<Record>(text);
    failure = decoded.failure;
    if (!decoded.value)
        return std::nullopt;
    return compactText(encodeRecord(*decoded.value));
}

inline std::vector<RecordCase> recordCases() {
    return {
        {"StorySegment",
         R"({"index":3,"startTime":125.5,"endTime":150.25,"sourceClip":"A.wav","transcript":"hola","translation":"hello","chapter":"One"})",
         {"index", "startTime", "endTime", "sourceClip", "transcript", "translation", "chapter"},
         {"chapter"},
         recodeAs<StorySegment>},
        {"Subtitle",
         R"({"startTime":0.1,"endTime":33.333333333333336,"text":"card"})",
         {"startTime", "endTime", "text"},
         {},
         recodeAs<Subtitle>},
        {"Act", R"({"name":"Act 1","segments":[0,1,-2]})", {"name", "segments"}, {}, recodeAs<Act>},
        {"StoryStructure",
         R"({"acts":[{"name":"Act 1","segments":[]}],"totalDuration":298.5})",
         {"acts", "totalDuration"},
         {},
         recodeAs<StoryStructure>},
        {"MiningResults",
         R"({"segments":[{"index":0,"startTime":1.0,"endTime":9.0,"sourceClip":"","transcript":"","translation":""}],"structure":{"acts":[],"totalDuration":8.0},"subtitles":[{"startTime":1.0,"endTime":2.0,"text":"a"}],"estimatedDuration":8.5})",
         {"segments", "structure", "subtitles", "estimatedDuration"},
         {},
         recodeAs<MiningResults>},
        {"WhisperSegment",
         R"({"start":0.0,"end":2.5,"text":" one"})",
         {"start", "end", "text"},
         {},
         recodeAs<WhisperSegment>},
        {"WhisperResponse",
         R"({"text":"one","language":"english","segments":[{"start":0.0,"end":2.5,"text":" one"}]})",
         {"text", "language", "segments"},
         {"language"},
         recodeAs<WhisperResponse>},
        {"UsedSegment",
         R"({"startTime":1.0,"endTime":2.0,"text":"t"})",
         {"startTime", "endTime", "text"},
         {},
         recodeAs<UsedSegment>},
        {"GoldMoment",
         R"({"startTime":1.0,"endTime":2.0,"text":"t","reason":"r","emotionalWeight":7})",
         {"startTime", "endTime", "text", "reason", "emotionalWeight"},
         {},
         recodeAs<GoldMoment>},
        {"Redundancy",
         R"({"firstStart":1.0,"firstEnd":2.0,"secondStart":3.0,"secondEnd":4.0,"topic":"t"})",
         {"firstStart", "firstEnd", "secondStart", "secondEnd", "topic"},
         {},
         recodeAs<Redundancy>},
        {"AlternateTake",
         R"({"existingStart":1.0,"existingEnd":2.0,"alternateStart":3.0,"alternateEnd":4.0,"alternateText":"a","reason":"r"})",
         {"existingStart", "existingEnd", "alternateStart", "alternateEnd", "alternateText", "reason"},
         {},
         recodeAs<AlternateTake>},
        {"AuditReport",
         R"({"coveragePercent":12.5,"usedSegments":[{"startTime":1.0,"endTime":2.0,"text":"t"}],"buriedGold":[],"redundancies":[],"alternates":[],"themeGaps":["sea","loss"],"confidenceScore":0.75,"summary":"s"})",
         {"coveragePercent", "usedSegments", "buriedGold", "redundancies", "alternates", "themeGaps", "confidenceScore",
          "summary"},
         {},
         recodeAs<AuditReport>},
        {"ProbeResult",
         R"({"path":"/m/A.wav","filename":"A.wav","duration":60.0,"startTimecode":"01:00:00:00","startTimecodeSeconds":3600.0,"sampleRate":48000,"fps":25.0,"codec":"pcm_s24le","hasVideo":false,"hasAudio":true,"channels":2,"bitDepth":24})",
         {"path", "filename", "duration", "startTimecode", "startTimecodeSeconds", "sampleRate", "fps", "codec",
          "hasVideo", "hasAudio", "channels", "bitDepth"},
         {"startTimecode", "startTimecodeSeconds", "sampleRate", "fps", "codec", "channels", "bitDepth"},
         recodeAs<ProbeResult>},
        {"MediaFileInfo",
         R"({"path":"/m/A.mov","filename":"A.mov","duration":60.0,"startTimecode":"01:00:00:00","fps":23.976,"hasVideo":true,"hasAudio":true,"codec":"h264"})",
         {"path", "filename", "duration", "startTimecode", "fps", "hasVideo", "hasAudio", "codec"},
         {"startTimecode", "codec"},
         recodeAs<MediaFileInfo>},
        {"CachedSegment",
         R"({"start":1.5,"end":2.5,"text":"line"})",
         {"start", "end", "text"},
         {},
         recodeAs<CachedSegment>},
        {"CachedTranscript",
         R"({"language":"en","segments":[{"start":1.5,"end":2.5,"text":"line"}],"mediaPaths":["/m/B.wav","/m/A.wav"],"createdAt":1700000000.25})",
         {"language", "segments", "mediaPaths", "createdAt"},
         {},
         recodeAs<CachedTranscript>},
        {"SavedProject",
         R"json({"timeline":"Dropped Files (2)","createdAt":1700000000.25,"language":"en","mediaPaths":["/m/A.wav"],"transcript":[{"start":1.5,"end":2.5,"text":"line"}],"results":{"segments":[],"structure":{"acts":[],"totalDuration":0.0},"subtitles":[],"estimatedDuration":0.0},"presetId":"campfire","targetMinutes":5.0})json",
         {"timeline", "createdAt", "language", "mediaPaths", "transcript", "results", "presetId", "targetMinutes"},
         {"results", "presetId"},
         recodeAs<SavedProject>},
        {"StyleSliders",
         R"({"pace":0.1,"structure":0.2,"emotion":0.3,"length":0.4,"boldness":0.5,"silence":0.6})",
         {"pace", "structure", "emotion", "length", "boldness", "silence"},
         {},
         recodeAs<StyleSliders>},
        {"UserInfo",
         R"({"id":"u1","name":"Ada","email":"ada@example.com","credits":42,"plan":"Studio"})",
         {"id", "name", "email", "credits", "plan"},
         {},
         recodeAs<UserInfo>},
        {"VersionInfo",
         R"({"version":"1.2.0","download_url":"https://a.example/b.zip","release_notes":"new\nold"})",
         {"version", "download_url", "release_notes"},
         {"download_url", "release_notes"},
         recodeAs<VersionInfo>},
        {"TokenValidation",
         R"({"valid":true,"token":"zuvo_1"})",
         {"valid", "token"},
         {"token"},
         recodeAs<TokenValidation>},
        {"TokenFile",
         R"({"token":"zuvo_1","email":"ada@example.com","name":"Ada"})",
         {"token", "email", "name"},
         {"email", "name"},
         recodeAs<TokenFile>},
        {"UploadResponse", R"({"jobId":"job-1"})", {"jobId"}, {}, recodeAs<wire::UploadResponse>},
        {"ProcessRequest",
         R"({"jobId":"job-1","mode":"Full Mine"})",
         {"jobId", "mode"},
         {},
         recodeAs<wire::ProcessRequest>},
        {"JobStatusResponse",
         R"({"status":"complete","progress":0.5,"result":{"segments":[],"structure":{"acts":[],"totalDuration":0.0},"subtitles":[],"estimatedDuration":0.0}})",
         {"status", "progress", "result"},
         {"result"},
         recodeAs<wire::JobStatusResponse>},
    };
}

} // namespace zuvo::tests
