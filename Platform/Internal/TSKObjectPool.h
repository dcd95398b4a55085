#pragma once

#include <new>
#include <utility>

#ifdef TESK_ADDRESS_SANITIZER
/// Nothing is kept, so that the sanitizer sees every use of released memory.
inline constexpr unsigned long kMaxPooledObjects = 0;
#else
/// Enough for the tree of a large class; about a megabyte of nodes for each thread.
inline constexpr unsigned long kMaxPooledObjects = 4096;
#endif

/// Memory for a class of small objects that are made and released by the thousand, such as the
/// nodes of an XML tree. What a thread releases is kept for the next objects that it makes, up to
/// `maxKept` of them, and given back when the thread ends. Serve a class with it by its operator
/// new and operator delete; Benchmarks/Platform/ElementTreeBenchmark.cpp shows what that is worth.
///
/// Thread safety: may be used by several threads at once; an object may be released by another
/// thread than the one that made it.
template <typename Object, unsigned long maxKept = kMaxPooledObjects>
class TSKObjectPool {
  public:
    /// Memory for one Object.
    /// Errors: std::bad_alloc.
    [[nodiscard]] static void* allocate() {
        if (kept_.first == nullptr)
            return ::operator new(sizeof(Object));
        --kept_.length;
        return std::exchange(kept_.first, kept_.first->next);
    }

    /// Takes memory back that allocate() gave.
    static void release(void* memory) noexcept {
        if (kept_.length == kept_.max && !open()) {
            ::operator delete(memory);
            return;
        }
        kept_.first = ::new (memory) Block{kept_.first};
        ++kept_.length;
    }

  private:
    struct Block {
        Block* next;
    };

    struct Kept {
        Block* first = nullptr;
        unsigned long length = 0;
        // None before the thread's first release, which sees to it that the thread gives back what
        // it keeps, and none after that has happened: objects may still be released then.
        unsigned long max = 0;
        bool isNew = true;
    };

    struct Closer {
        ~Closer() {
            kept_.max = 0;
            kept_.length = 0;
            while (kept_.first != nullptr)
                ::operator delete(std::exchange(kept_.first, kept_.first->next));
        }
    };

    // From now on the thread keeps objects, unless it is about to end. Returns whether there is
    // room for one.
    static bool open() noexcept {
        if (!kept_.isNew)
            return false;
        static thread_local const Closer closer;
        kept_.isNew = false;
        kept_.max = maxKept;
        return maxKept > 0;
    }

    // The model spares a function call at each use. It needs room in the static block for thread
    // data, of which the C library holds enough in reserve for libraries that are loaded late.
    [[gnu::tls_model("initial-exec")]] static inline thread_local constinit Kept kept_;
};
