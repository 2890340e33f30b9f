#include "stats/LineReader.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace korvalin {
namespace {

constexpr std::size_t longestLine = 1024 * 1024;
constexpr std::size_t blockBytes = 256 * 1024; // fits the cache that the lines are parsed in
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void Throw(int error, const std::filesystem::path& path) {
    throw std::system_error(error != 0 ? error : EIO, std::generic_category(), path.string());
}

std::ifstream Open(const std::filesystem::path& path) {
    // Opening a pipe would wait for its writer; a link may lead anywhere.
    switch (std::filesystem::symlink_status(path).type()) {
    case std::filesystem::file_type::regular: break;
    case std::filesystem::file_type::directory: Throw(EISDIR, path);
    case std::filesystem::file_type::symlink: Throw(ELOOP, path);
    case std::filesystem::file_type::not_found: Throw(ENOENT, path);
    default: Throw(EINVAL, path);
    }
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0); // blocks go straight to their place
    errno = 0;
    file.open(path, std::ios::binary);
    if (!file) Throw(errno, path);
    return file;
}

} // namespace

void LineSplitter::Feed(std::string_view block) {
    if (block.empty()) return;
    if (std::exchange(afterReturn_, false) && block.front() == '\n') block.remove_prefix(1);
    std::size_t lineFeed = block.find('\n');
    while (!block.empty()) {
        const std::size_t end = std::min(block.substr(0, lineFeed).find('\r'), lineFeed);
        if (end == std::string_view::npos) return Keep(block);
        EndLine(block.substr(0, end));
        const bool isReturn = block[end] == '\r';
        const bool isPair = isReturn && end + 1 == lineFeed;
        afterReturn_ = isReturn && end + 1 == block.size();
        const std::size_t next = end + (isPair ? 2 : 1);
        block.remove_prefix(next);
        if (lineFeed != std::string_view::npos)
            lineFeed = lineFeed < next ? block.find('\n') : lineFeed - next;
    }
}

void LineSplitter::Keep(std::string_view part) {
    tooLong_ = tooLong_ || begun_.size() + part.size() > longestLine;
    if (tooLong_) {
        begun_.clear();
    } else {
        begun_ += part;
    }
}

void LineSplitter::EndLine(std::string_view part) {
    if (begun_.empty() && !tooLong_ && part.size() <= longestLine) return use_(part);
    Keep(part);
    use_(begun_);
    begun_.clear();
    tooLong_ = false;
}

void LineSplitter::Finish() {
    if (!begun_.empty() || tooLong_) EndLine({});
}

std::uintmax_t ReadLines(const std::filesystem::path& path, const LineSplitter::Use& use) {
    std::ifstream file = Open(path);
    LineSplitter lines(use);
    std::string buffer(blockBytes, '\0');
    std::uintmax_t bytes = 0;
    while (file) {
        errno = 0;
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        std::string_view block(buffer.data(), static_cast<std::size_t>(file.gcount()));
        if (file.bad()) Throw(errno, path);
        if (bytes == 0 && block.starts_with(byteOrderMark)) {
            lines.Feed(block.substr(byteOrderMark.size()));
        } else {
            lines.Feed(block);
        }
        bytes += block.size();
    }
    lines.Finish();
    return bytes;
}

} // namespace korvalin
