#include "inet/IncomingFile.h"

#include "base/Text.h"
#include "platform/Files.h"

namespace korvalin {

IncomingFile::IncomingFile(Files& files, std::filesystem::path target, std::size_t lookedAt)
    : files_(files), target_(std::move(target)), lookedAt_(lookedAt) {}

IncomingFile::~IncomingFile() = default;

IncomingFile::Result IncomingFile::Take(std::string_view part) {
    if (file_) return file_->Write(part) ? Result::Good : Result::NotSaved;
    beginning_ += part;
    return beginning_.size() < lookedAt_ ? Result::Good : Begin();
}

IncomingFile::Result IncomingFile::Begin() {
    if (ContainsNoCase(std::string_view(beginning_).substr(0, lookedAt_), MissingText))
        return Result::Missing;
    file_ = files_.BeginReplace(target_);
    return file_ && file_->Write(beginning_) ? Result::Good : Result::NotSaved;
}

IncomingFile::Result IncomingFile::Finish() {
    if (!file_ && beginning_.empty()) return Result::Empty;
    const Result begun = file_ ? Result::Good : Begin();
    if (begun != Result::Good) return begun;
    return file_->PutInPlace() ? Result::Good : Result::NotSaved;
}

} // namespace korvalin
