#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <mutex>

namespace Http {

/// The memory that all responses of a server may take together, those that are made and those that
/// are sent. Slow clients of large documents would otherwise take as much as they like.
///
/// A response that finds no room waits outside of its worker, so that waiting costs neither a
/// thread nor memory: what was made of it is dropped, and it is made again when there is room.
///
/// Thread safety: may be used by several threads at once.
class ResponseMemory {
  public:
    /// The part that one response takes. It is given back when the share is destroyed.
    ///
    /// Thread safety: may be used by several threads at once.
    class Share {
      public:
        /// `memory` must outlive the share.
        explicit Share(ResponseMemory& memory) noexcept : memory_(memory) {}
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;
        ~Share() { release(); }

        /// Takes more, so that the share is of `bytes`. Returns false, and leaves the share as it
        /// is, if there is no room for that. A share that is alone may take more than there is.
        [[nodiscard]] bool growTo(std::size_t bytes) noexcept;

        /// Gives back what is beyond `bytes`.
        void shrinkTo(std::size_t bytes) noexcept;

        /// Gives back all, and waits until there is room for what growTo() was refused last. The
        /// share has that size when `onRoom` is called, by any thread: that of this call, too.
        /// `onRoom` must not throw. Shares are served in the order in which they began to wait.
        /// Errors: std::bad_alloc; the share is empty and does not wait.
        void wait(std::function<void()> onRoom);

        /// Gives back all, and waits no longer; but `onRoom` may be called still if another thread
        /// has just found room.
        void release() noexcept;

      private:
        friend class ResponseMemory;

        ResponseMemory& memory_;
        std::size_t bytes_ = 0;         // guarded by memory_.mutex_
        std::size_t refusedBytes_ = 0;  // guarded by memory_.mutex_
        std::function<void()> onRoom_;  // empty unless it waits; guarded by memory_.mutex_
    };

    /// For `budget` bytes.
    explicit ResponseMemory(std::size_t budget) noexcept : budget_(budget) {}
    ResponseMemory(const ResponseMemory&) = delete;
    ResponseMemory& operator=(const ResponseMemory&) = delete;

    /// The bytes of all shares.
    [[nodiscard]] std::size_t used() const;

  private:
    // To be called with mutex_ locked.
    [[nodiscard]] bool resize(Share& share, std::size_t bytes) noexcept;

    void serveWaiting() noexcept;

    const std::size_t budget_;
    mutable std::mutex mutex_;
    std::size_t used_ = 0;       // guarded by mutex_
    std::list<Share*> waiting_;  // the one that waits for longest first; guarded by mutex_
};

}  // namespace Http
