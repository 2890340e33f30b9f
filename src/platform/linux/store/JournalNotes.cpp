#include "platform/linux/store/JournalNotes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace korvalin {
namespace {

// The file: a header, then one row for each note, in the machine's byte order. What is behind them is left
// over from a time with more notes.
struct Header {
    std::array<char, 4> Magic{'K', 'r', 'v', 'N'};
    std::uint32_t Version = 1;
    std::uint64_t Boot = 0;
    std::uint64_t Id = 0;
    std::uint64_t Generation = 0;
    std::uint64_t Count = 0;
    std::uint64_t Checksum = 0; // of all that is written, this one being 0
};
struct Row {
    std::uint64_t Index;
    std::uint64_t Received, Transmitted;
    double ReadAt;
    double OpenReceived, OpenTransmitted;
    double OpenEnd;
};

template <typename T>
std::string_view BytesOf(const T& value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

// FNV-1a; goes on from the hash of what stands before.
std::uint64_t Hash(std::string_view bytes, std::uint64_t hash = 0xCBF29CE484222325) {
    for (const char c : bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

std::uint64_t ChecksumOf(Header header, std::string_view rows) {
    header.Checksum = 0;
    return Hash(rows, Hash(BytesOf(header)));
}

std::string Serialize(const JournalStamp& stamp, const std::vector<JournalNote>& notes) {
    std::string rows;
    for (const JournalNote& note : notes) {
        rows += BytesOf(Row{note.Index, note.Received, note.Transmitted, note.ReadAt, note.OpenReceived,
                            note.OpenTransmitted, note.OpenEnd});
    }
    Header header;
    header.Boot = Hash(stamp.Boot);
    header.Id = stamp.Id;
    header.Generation = stamp.Generation;
    header.Count = notes.size();
    header.Checksum = ChecksumOf(header, rows);
    return std::string(BytesOf(header)) + rows;
}

struct Content {
    Header Head;
    std::vector<Row> Rows;
};

// nullopt when the bytes are no whole notes.
std::optional<Content> Parse(std::string_view bytes) {
    Content content;
    Header& header = content.Head;
    if (bytes.size() < sizeof header) return std::nullopt;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.Magic != Header().Magic || header.Version != Header().Version) return std::nullopt;
    bytes.remove_prefix(sizeof header);
    if (header.Count > bytes.size() / sizeof(Row)) return std::nullopt;
    bytes = bytes.substr(0, header.Count * sizeof(Row));
    if (header.Checksum != ChecksumOf(header, bytes)) return std::nullopt;
    content.Rows.resize(header.Count);
    if (!bytes.empty()) std::memcpy(content.Rows.data(), bytes.data(), bytes.size());
    return content;
}

// nullopt when there is no such file; a link is none.
std::optional<std::string> ReadAtOnce(const std::filesystem::path& path) {
    constexpr off_t limit = 1 << 24;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    std::string content(static_cast<std::size_t>(std::min(status.st_size, limit)), '\0');
    const ssize_t count = pread(file.Get(), content.data(), content.size(), 0);
    content.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return content;
}

void Apply(const Row& row, std::vector<JournalEntry>& entries) {
    const auto entry = std::ranges::find(entries, row.Index, &JournalEntry::Index);
    if (entry == entries.end() || !entry->Open) return;
    entry->Received = row.Received;
    entry->Transmitted = row.Transmitted;
    entry->ReadAt = row.ReadAt;
    entry->Open->BytesReceived = row.OpenReceived;
    entry->Open->BytesTransmitted = row.OpenTransmitted;
    entry->Open->End = row.OpenEnd;
}

} // namespace

JournalNotes::JournalNotes(const std::vector<std::filesystem::path>& folders, std::uint64_t id) {
    for (const std::filesystem::path& folder : folders)
        files_.push_back(folder / fmt::format("Korvalin_Journal_{:016x}.notes", id));
}

// A file that somebody removed is made anew. It must not be there yet: a planted one could be a link.
bool JournalNotes::EnsureFile() {
    struct stat status {};
    if (file_ && fstat(file_.Get(), &status) == 0 && status.st_nlink > 0) return true;
    written_.clear();
    for (const std::filesystem::path& path : files_) {
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        file_ = Descriptor(open(path.c_str(), flags, 0600));
        if (file_) return true;
    }
    return false;
}

void JournalNotes::Write(const JournalStamp& stamp, const std::vector<JournalNote>& notes) {
    std::string content = Serialize(stamp, notes);
    if (!EnsureFile() || content == written_) return;
    // In one call, which a kill does not divide unless there are more notes than a page holds.
    const ssize_t count = pwrite(file_.Get(), content.data(), content.size(), 0);
    written_ = count == static_cast<ssize_t>(content.size()) ? std::move(content) : std::string();
}

void JournalNotes::Remove() {
    for (const std::filesystem::path& path : files_)
        unlink(path.c_str());
    file_ = Descriptor();
    written_.clear();
}

JournalNotes::Applied JournalNotes::Apply(const JournalStamp& stamp, JournalPicture& picture) const {
    for (const std::filesystem::path& path : files_) {
        const std::optional<std::string> bytes = ReadAtOnce(path);
        if (!bytes) continue;
        const std::optional<Content> content = Parse(*bytes);
        if (!content) return Applied::Retry;
        const Header& header = content->Head;
        if (header.Id != stamp.Id || header.Boot != Hash(stamp.Boot)) continue;
        if (header.Generation > stamp.Generation) return Applied::Retry;
        if (header.Generation < stamp.Generation) continue;
        for (const Row& row : content->Rows)
            korvalin::Apply(row, picture.Entries);
    }
    return Applied::Done;
}

} // namespace korvalin
