// The pages that a check looks at: those of a file as it lies there, or those of an open database.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "jet/file.h"
#include "page/found_log.h"
#include "page/header.h"
#include "page/pager.h"
#include "page/types.h"

namespace jet {

// A file that is only looked at, whatever state it is in, and nobody else may change meanwhile; and
// the log beside it, whose pages take the place of the file's when it belongs to it.
struct InspectedFile {
    std::unique_ptr<File> file;
    FileHeader header;
    FoundLog log;
};

// The name may be a link. Throws kFileInUse, kNotADatabase and whatever else reading the header
// throws.
InspectedFile OpenForInspection(const std::filesystem::path& path, FileSystem& files);

class PageSource {
public:
    PageSource() = default;
    PageSource(const PageSource&) = delete;
    PageSource& operator=(const PageSource&) = delete;
    virtual ~PageSource() = default;

    [[nodiscard]] virtual std::uint32_t PageCount() const = 0;
    // A copy of the page. Throws Damage "page-beyond-end".
    [[nodiscard]] std::vector<std::byte> Read(std::uint32_t page) const;

protected:
    virtual void ReadInto(std::uint32_t page, std::vector<std::byte>& into) const = 0;
};

class FilePages : public PageSource {
public:
    // Refers to it.
    explicit FilePages(const InspectedFile& inspected);
    [[nodiscard]] std::uint32_t PageCount() const override { return pageCount_; }

private:
    void ReadInto(std::uint32_t page, std::vector<std::byte>& into) const override;

    File& file_;
    const LogReplay* replay_;  // null where the file alone counts
    std::uint32_t pageSize_;
    std::uint32_t pageCount_;
};

class PagerPages : public PageSource {
public:
    explicit PagerPages(Pager& pager) : pager_(pager) {}
    [[nodiscard]] std::uint32_t PageCount() const override { return pager_.PageCount(); }

private:
    void ReadInto(std::uint32_t page, std::vector<std::byte>& into) const override;

    Pager& pager_;
};

}  // namespace jet
