#include "ObjectManager/Http/ResponseMemory.h"

#include <algorithm>
#include <utility>

namespace Http {

bool ResponseMemory::Share::growTo(std::size_t bytes) noexcept {
    const std::lock_guard lock(memory_.mutex_);
    if (bytes <= bytes_ || memory_.resize(*this, bytes))
        return true;
    refusedBytes_ = bytes;
    return false;
}

void ResponseMemory::Share::wait(std::function<void()> onRoom) {
    release();
    {
        std::list<Share*> waiting = {this};
        const std::lock_guard lock(memory_.mutex_);
        onRoom_ = std::move(onRoom);
        memory_.waiting_.splice(memory_.waiting_.end(), waiting);
    }
    memory_.serveWaiting();  // the room may have become free since it was refused
}

void ResponseMemory::Share::shrinkTo(std::size_t bytes) noexcept {
    {
        const std::lock_guard lock(memory_.mutex_);
        const std::size_t before = std::exchange(bytes_, std::min(bytes, bytes_));
        memory_.used_ -= before - bytes_;
        if (memory_.waiting_.empty())
            return;
    }
    memory_.serveWaiting();
}

void ResponseMemory::Share::release() noexcept {
    std::function<void()> dropped;  // without the lock
    {
        const std::lock_guard lock(memory_.mutex_);
        if (onRoom_) {
            memory_.waiting_.remove(this);
            dropped.swap(onRoom_);
        }
    }
    shrinkTo(0);
}

std::size_t ResponseMemory::used() const {
    const std::lock_guard lock(mutex_);
    return used_;
}

bool ResponseMemory::resize(Share& share, std::size_t bytes) noexcept {
    const std::size_t others = used_ - share.bytes_;
    if (others > 0 && (bytes > budget_ || others > budget_ - bytes))
        return false;
    used_ = others + bytes;
    share.bytes_ = bytes;
    return true;
}

// Calls without the lock, since what is called may use this.
void ResponseMemory::serveWaiting() noexcept {
    for (;;) {
        std::function<void()> onRoom;
        {
            const std::lock_guard lock(mutex_);
            if (waiting_.empty() || !resize(*waiting_.front(), waiting_.front()->refusedBytes_))
                return;
            onRoom.swap(waiting_.front()->onRoom_);
            waiting_.pop_front();
        }
        onRoom();
    }
}

}  // namespace Http
