#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Pages {

/// Writes a ZIP archive while its files come. The same files make the same bytes: all have the
/// first time that such an archive can hold.
///
/// An archive has no room for more than 65,535 files and 4 GB.
///
/// Thread safety: belongs to one thread.
class ZipArchive {
  public:
    /// Gets the bytes of the archive, a part at a time.
    using Sink = std::function<void(std::string_view bytes)>;

    /// Errors: TeskBaseException when there is no memory.
    explicit ZipArchive(Sink sink);
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /// Adds a file. `name` is a relative path in UTF-8.
    /// Errors: TeskBaseException when there is no room; whatever the sink throws.
    void add(std::string_view name, std::string_view content);

    /// Ends the archive, which nothing is added to any more.
    /// Errors: as add().
    void finish();

  private:
    class Compressor;

    void put(std::string_view bytes);

    Sink sink_;
    std::unique_ptr<Compressor> compressor_;
    std::string directory_;
    std::uint64_t size_ = 0;
    std::size_t files_ = 0;
};

}  // namespace Pages
