#include "plugin/ZipDirectory.h"

#include <algorithm>
#include <fstream>
#include <string_view>

namespace zuvo {

namespace {

constexpr std::string_view signature("PK\5\6", 4);

// Where each number is in the record, in bytes.
constexpr std::size_t diskNumber = 4;
constexpr std::size_t diskOfDirectory = 6;
constexpr std::size_t entriesOnDisk = 8;
constexpr std::size_t entryCount = 10;
constexpr std::size_t directorySize = 12;
constexpr std::size_t directoryOffset = 16;
constexpr std::size_t commentLength = 20;
constexpr std::size_t recordLength = 22;
constexpr std::size_t longestComment = 0xFFFF;

/// A little-endian number of `length` bytes.
std::uint64_t numberAt(std::string_view bytes, std::size_t at, std::size_t length) {
    constexpr unsigned byteBits = 8;
    std::uint64_t number = 0;
    for (std::size_t i = length; i-- > 0;)
        number = (number << byteBits) | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

/// The bytes from the last signature on; empty if there is none.
std::string lastRecord(std::ifstream& file, std::uint64_t fileBytes) {
    const auto length = std::min<std::uint64_t>(fileBytes, recordLength + longestComment);
    std::string tail(static_cast<std::size_t>(length), '\0');
    file.seekg(static_cast<std::streamoff>(fileBytes - length));
    file.read(tail.data(), static_cast<std::streamsize>(tail.size()));
    const auto at = tail.rfind(signature);
    return file && at != std::string::npos ? tail.substr(at) : std::string();
}

} // namespace

std::optional<std::uint64_t> readZipDirectoryEnd(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file)
        return std::nullopt;
    const auto fileBytes = static_cast<std::uint64_t>(file.tellg());
    const auto record = lastRecord(file, fileBytes);
    if (record.size() < recordLength || record.size() != recordLength + numberAt(record, commentLength, 2))
        return std::nullopt;
    const auto start = fileBytes - record.size();
    const auto entries = numberAt(record, entryCount, 2);
    if (numberAt(record, diskNumber, 2) != 0 || numberAt(record, diskOfDirectory, 2) != 0 ||
        numberAt(record, entriesOnDisk, 2) != entries ||
        numberAt(record, directoryOffset, 4) + numberAt(record, directorySize, 4) != start)
        return std::nullopt;
    return entries;
}

} // namespace zuvo
