// SPDX-License-Identifier: MIT

#include <array>
#include <span>
#include <string>

#include <KXFoundation/Cache/Disk/HeaderPage.h>

namespace kx::disk {

namespace {

/// The page but for its zeros.
struct Fields {
    std::uint64_t magic;
    std::uint64_t head;
    std::uint64_t tail;
    std::uint64_t boot;
};

/// Another value after every start of the machine; 0 where that cannot be told.
std::uint64_t thisBoot(FileSystem& files) {
    std::array<std::byte, 36> identifier;
    auto file = files.open("/proc/sys/kernel/random/boot_id", FileSystem::Mode::Read);
    if (!file || !(*file)->readAt(0, identifier)) return 0;
    return hashOfContents(identifier);
}

bool isPage(const Fields& fields, std::uint64_t magic) {
    const Position tail = Position::unpacked(fields.tail);
    return fields.magic == magic && Position::unpacked(fields.head) <= tail && tail.segment <= kLastSegment;
}

Result<Fields> readFields(File& file, std::size_t size) {
    Fields fields = {};
    auto found = file.size();
    if (!found) return std::move(found).error();
    if (*found < size) return fields;
    auto got = file.readAt(0, std::as_writable_bytes(std::span(&fields, 1)));
    if (!got) return std::move(got).error();
    return fields;
}

std::string pageOf(const Fields& fields, std::size_t size) {
    std::string page(size, '\0');
    std::memcpy(page.data(), &fields, sizeof fields);
    return page;
}

/// Writes a fresh page over whatever the file holds. It is never cut: others may have it mapped.
Result<void> writeFresh(File& file, const Fields& fields, std::size_t size) {
    const std::string page = pageOf(fields, size);
    return file.writeAt(0, std::as_bytes(std::span(page)));
}

/// Makes the file the page of this start of the machine. The head does not outlive a power cut: it may have
/// been written before what was to be read in place of the entries before it.
Result<void> makePage(File& file, const Fields& found, const Fields& fresh, std::size_t size) {
    if (!isPage(found, fresh.magic)) return writeFresh(file, fresh, size);
    if (found.boot == fresh.boot) return {};
    return writeFresh(file, {fresh.magic, 0, found.tail, fresh.boot}, size);
}

}  // namespace

/// The head first: it never passes a tail that is read after it. The magic last: where that is there, what
/// was read before was the file's.
std::optional<HeaderPage::Ends> HeaderPage::ends() const noexcept {
    Fields fields = {};
    fields.head = load(kHead);
    fields.tail = load(kTail);
    fields.magic = load(kMagicWord);
    if (!isPage(fields, kMagic)) return std::nullopt;
    return Ends{Position::unpacked(fields.head), Position::unpacked(fields.tail)};
}

bool HeaderPage::store(std::size_t offset, std::uint64_t value) noexcept {
    std::atomic_ref(word(offset)).store(value, std::memory_order_release);
    return load(kMagicWord) == kMagic;
}

Result<std::unique_ptr<HeaderPage>> HeaderPage::open(FileSystem& files, const std::string& path,
                                                     Access access) {
    const bool writes = access == Access::ReadWrite;
    auto file = files.open(path, writes ? FileSystem::Mode::ReadWrite : FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    if (auto locked = (*file)->lock(writes ? File::Lock::Exclusive : File::Lock::Shared); !locked)
        return std::move(locked).error();
    auto found = readFields(**file, kSize);
    if (!found) return std::move(found).error();
    if (writes) {
        const auto made = makePage(**file, *found, {kMagic, 0, 0, thisBoot(files)}, kSize);
        if (!made) return made.error();
    } else if (!isPage(*found, kMagic)) {
        return Error{ErrorKind::Corrupt, 0, path};
    }
    auto identity = (*file)->identity();
    if (!identity) return std::move(identity).error();
    auto page = (*file)->map(kSize, writes ? File::Access::ReadWrite : File::Access::Read);
    if (!page) return std::move(page).error();
    if (!writes) (*file)->unlock();
    return std::unique_ptr<HeaderPage>(new HeaderPage(std::move(*file), std::move(*page), *identity, writes));
}

Result<void> HeaderPage::replace(FileSystem& files, const std::string& path, Position tail) {
    return replaceFile(files, path, pageOf({kMagic, 0, tail.packed(), thisBoot(files)}, kSize));
}

}  // namespace kx::disk
