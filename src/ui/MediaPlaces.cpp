#include "ui/MediaPlaces.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Paths.h"
#include "model/FileLimits.h"

#include <algorithm>
#include <utility>

namespace zuvo {

std::vector<MediaPlace> laidEndToEnd(const std::vector<MediaLength>& files) {
    std::vector<MediaPlace> places;
    double sum = 0.0;
    for (const auto& file : files) {
        places.push_back({file.path, sum, sum + file.duration});
        sum += file.duration;
    }
    return places;
}

std::vector<MediaPlace> placesFromProbe(const std::string& cacheFolder, const std::vector<std::string>& mediaPaths) {
    const auto text = readFile(cacheFolder + "/probe_results.json", FileLimits::probeCache);
    const auto probe = text ? parseForeignJson(*text) : std::nullopt;
    if (!probe || !probe->is_object())
        return {};
    struct Known {
        double timecode;
        MediaLength file;
    };
    std::vector<Known> known;
    for (const auto& path : mediaPaths) {
        const auto entry = probe->find(lastPathComponent(path));
        if (entry == probe->end())
            continue;
        const auto duration = readNumber(*entry, "duration");
        if (duration && *duration > 0.0)
            known.push_back({readNumber(*entry, "startTimecodeSeconds").value_or(0.0), {path, *duration}});
    }
    std::stable_sort(known.begin(), known.end(),
                     [](const Known& a, const Known& b) { return a.timecode < b.timecode; });
    std::vector<MediaLength> files;
    for (auto& one : known)
        files.push_back(std::move(one.file));
    return laidEndToEnd(files);
}

std::vector<std::string> sortedByName(std::vector<std::string> paths) {
    std::stable_sort(paths.begin(), paths.end(), [](const std::string& a, const std::string& b) {
        return lastPathComponent(a) < lastPathComponent(b);
    });
    return paths;
}

std::optional<LocalPlace> placeOf(double mineTime, const std::vector<MediaPlace>& places) {
    if (places.empty())
        return std::nullopt;
    for (const auto& place : places) {
        if (place.seqStart <= mineTime && mineTime < place.seqEnd)
            return LocalPlace{place.path, mineTime - place.seqStart};
    }
    return LocalPlace{places.front().path, mineTime};
}

} // namespace zuvo
