#include "ObjectManager/Pages/ZipArchive.h"

#include <limits>
#include <utility>
#include <zlib.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Pages {

namespace {

[[noreturn]] void fail(const char* reason) {
    throw TeskBaseException("Pages::ZipArchive", reason, CIM_ERR_FAILED);
}

// The least significant byte first.
void append(std::string& bytes, std::uint64_t number, int length) {
    for (; length > 0; --length, number >>= 8U)
        bytes += static_cast<char>(number & 0xFFU);
}

void append16(std::string& bytes, std::uint64_t number) {
    append(bytes, number, 2);
}

void append32(std::string& bytes, std::uint64_t number) {
    append(bytes, number, 4);
}

// What the header of a file and its entry in the directory have in common.
std::string describe(std::string_view name, std::string_view content, std::size_t compressedSize) {
    constexpr unsigned kVersion = 20;  // the first with Deflate
    constexpr unsigned kNamesAreUtf8 = 0x0800;
    constexpr unsigned kDeflate = 8;
    constexpr unsigned kFirstDay = 0x0021;  // 1 January 1980
    const auto checksum =
        crc32_z(0, reinterpret_cast<const unsigned char*>(content.data()), content.size());
    std::string text;
    append16(text, kVersion);
    append16(text, kNamesAreUtf8);
    append16(text, kDeflate);
    append16(text, 0);
    append16(text, kFirstDay);
    append32(text, checksum);
    append32(text, compressedSize);
    append32(text, content.size());
    append16(text, name.size());
    append16(text, 0);
    return text;
}

}  // namespace

// Deflates one text after another, with the same memory.
//
// Thread safety: belongs to one thread.
class ZipArchive::Compressor {
  public:
    Compressor() {
        constexpr int kNoHeader = -15;  // negative: the window's size in bits, and no header
        constexpr int kMemory = 8;
        // The lowest level: documents repeat themselves so much that others take three times as
        // long for the archive to be a third smaller.
        if (deflateInit2(&stream_, Z_BEST_SPEED, Z_DEFLATED, kNoHeader, kMemory,
                         Z_DEFAULT_STRATEGY) != Z_OK)
            fail("there is no memory to make an archive");
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { deflateEnd(&stream_); }

    // Valid until the next call.
    std::string_view compress(std::string_view content) {
        deflateReset(&stream_);
        compressed_.resize(deflateBound(&stream_, content.size()));
        // zlib reads through this pointer only.
        stream_.next_in =
            reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));  // NOLINT
        stream_.avail_in = static_cast<unsigned>(content.size());
        stream_.next_out = reinterpret_cast<unsigned char*>(compressed_.data());
        stream_.avail_out = static_cast<unsigned>(compressed_.size());
        if (deflate(&stream_, Z_FINISH) != Z_STREAM_END)
            fail("a file of an archive cannot be compressed");
        return {compressed_.data(), stream_.total_out};
    }

  private:
    z_stream stream_{};
    std::string compressed_;
};

ZipArchive::ZipArchive(Sink sink)
    : sink_(std::move(sink)), compressor_(std::make_unique<Compressor>()) {}

ZipArchive::~ZipArchive() = default;

void ZipArchive::add(std::string_view name, std::string_view content) {
    constexpr std::size_t kMaxFiles = std::numeric_limits<std::uint16_t>::max();
    constexpr std::size_t kMaxFileSize = std::size_t{1} << 31U;
    if (files_ == kMaxFiles || name.size() > std::numeric_limits<std::uint16_t>::max() ||
        content.size() > kMaxFileSize)
        fail("an archive has no room for so much");
    const std::string_view compressed = compressor_->compress(content);
    const std::string description = describe(name, content, compressed.size());

    constexpr unsigned kMadeOnUnix = 0x0314;
    constexpr std::uint32_t kReadableFile = 0100644U << 16U;
    directory_ += "PK\1\2";
    append16(directory_, kMadeOnUnix);
    directory_ += description;
    append16(directory_, 0);  // no comment
    append16(directory_, 0);  // on the first disk
    append16(directory_, 0);
    append32(directory_, kReadableFile);
    append32(directory_, size_);
    directory_ += name;
    ++files_;

    put("PK\3\4");
    put(description);
    put(name);
    put(compressed);
}

void ZipArchive::finish() {
    std::string end = "PK\5\6";
    append32(end, 0);  // one disk
    append16(end, files_);
    append16(end, files_);
    append32(end, directory_.size());
    append32(end, size_);
    append16(end, 0);  // no comment
    put(directory_);
    put(end);
}

void ZipArchive::put(std::string_view bytes) {
    size_ += bytes.size();
    if (size_ > std::numeric_limits<std::uint32_t>::max())
        fail("an archive has no room for so much");
    sink_(bytes);
}

}  // namespace Pages
